// The picture of a section, drawn when something changed.
#pragma once

#include <optional>
#include <string>

#include "client/renderers.h"
#include "octview/model/slice_picture.h"
#include "octview/model/slice_position.h"
#include "octview/window/pane_texture.h"

namespace oct::app {

class SliceDrawing {
 public:
  SliceDrawing(const GlFunctions& gl, SliceAxis axis) : axis_(axis), texture_(gl) {}

  // Of a document that is open. After an error it tries again when something changes.
  void update(const Document& document, const ViewState& state, PictureSize size);

  const Image& image() const { return *images_.base; }
  const SliceArea& area() const { return area_; }
  // The part of the pane that the texture fills.
  const PixelRectangle& pixels() const { return pixels_; }
  void* texture() const { return texture_.id(); }
  // Why nothing is seen; empty when something is.
  const std::string& explanation() const { return explanation_; }

 private:
  // What the samples depend on, and what the picture does.
  struct Samples {
    std::uint64_t revision = 0;
    std::ptrdiff_t position = 0;
    EnFace enface;
    bool below_surface = false;
    bool overlay = false;
    std::array<double, 3> step{};

    bool operator==(const Samples&) const = default;
  };
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
  std::optional<Samples> samples_;
  std::optional<Look> look_;
  SliceImages images_;
  SliceArea area_;
  PixelRectangle pixels_;
  std::string explanation_;
};

}  // namespace oct::app
