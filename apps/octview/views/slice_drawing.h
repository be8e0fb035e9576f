// The picture of a section, drawn when something changed.
#pragma once

#include <optional>
#include <string>

#include "client/renderers.h"
#include "octview/model/slice_source.h"
#include "octview/window/pane_texture.h"

namespace oct::app {

class SliceDrawing {
 public:
  SliceDrawing(const GlFunctions& gl, SliceAxis axis) : axis_(axis), texture_(gl), source_(axis) {}

  // Of a document that is open. After an error it tries again when something changes.
  void update(const Document& document, const ViewState& state, PictureSize size);

  const SliceSource& source() const { return source_; }
  const Image& image() const { return *source_.images().base; }
  const SliceArea& area() const { return area_; }
  // The part of the pane that the texture fills.
  const PixelRectangle& pixels() const { return pixels_; }
  void* texture() const { return texture_.id(); }
  // Why nothing is seen; empty when something is.
  const std::string& explanation() const { return explanation_; }

 private:
  // What the picture of the samples depends on.
  struct Look {
    LayerLook base;
    LayerLook overlay;
    SliceWindow window;
    PictureSize size;

    bool operator==(const Look&) const = default;
  };

  const SliceAxis axis_;
  PaneTexture texture_;
  DisplayRenderer renderer_;
  std::optional<Look> look_;
  SliceSource source_;
  SliceArea area_;
  PixelRectangle pixels_;
  std::string explanation_;
};

}  // namespace oct::app
