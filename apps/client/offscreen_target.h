// An offscreen target of the library, and the frames drawn in it.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "client/rendering_handle.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::app {

// A context of its own, current on the thread that made it.
class OffscreenTarget {
 public:
  // Draws one frame with the function and takes its pixels: RGBA, the top row first.
  // Memory is kept from call to call.
  template <class Draw>
  void render(unsigned width, unsigned height, std::vector<std::uint8_t>& pixels, Draw draw) {
    checked(beginOffscreenFrame, handle_.get(), width, height);
    draw();
    pixels.resize(std::size_t{width} * height * 4);
    checked(finishOffscreenFrameAs, handle_.get(), static_cast<int>(OCT_PIXELS_RGBA_TOP_DOWN),
            static_cast<void*>(pixels.data()));
  }

 private:
  RenderingHandle<OffscreenTargetHandle> handle_{createOffscreenTarget, clearOffscreenTarget};
};

}  // namespace oct::app
