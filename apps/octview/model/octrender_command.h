// The command line of octrender that draws what the viewer shows.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

#include "data/picture.h"
#include "data/slices.h"
#include "octview/model/document.h"
#include "octview/model/view_state.h"

namespace oct::app {

// Words behind the program's name. The picture of the volume in this size; the paths are those of the files as they were opened.
// Throws a std::runtime_error that says what octrender cannot be told.
std::vector<std::string> volume_command(const SessionFiles& files, const ViewState& state, PictureSize size,
                                        const std::string& output);

// A section at this position; along a surface samples below it.
std::vector<std::string> slice_command(const SessionFiles& files, const ViewState& state, SliceAxis axis,
                                       std::ptrdiff_t position, PictureSize size, const std::string& output);

// What a pane shows.
std::vector<std::string> pane_command(const Document& document, const ViewState& state, Pane pane,
                                      PictureSize size, const std::string& output);

}  // namespace oct::app
