// Pictures of the viewer's panes in files: drawn as octrender draws them, in full quality and laid out for their own size.
#pragma once

#include <filesystem>
#include <string>

#include "data/picture.h"
#include "data/progress_function.h"
#include "octview/model/document.h"
#include "octview/model/view_state.h"

namespace oct::app {

struct PictureOrder {
  Pane pane = Pane::volume;
  PictureSize size;
  bool figure = false;  // the volume on paper, with scale bar and colour bar
  std::filesystem::path file;
};

struct DrawnPicture {
  Picture picture;
  std::string explanation;  // why it shows nothing; empty when it shows something
};

// In an OpenGL context of its own, on any thread that has none. Throws what the progress function throws.
DrawnPicture draw_picture_of(const Document& document, const ViewState& state, const PictureOrder& order,
                             const ProgressFunction& progress);

// Draws and writes. Returns why the picture shows nothing; empty when it shows something.
std::string save_picture(const Document& document, const ViewState& state, const PictureOrder& order,
                         const ProgressFunction& progress);

}  // namespace oct::app
