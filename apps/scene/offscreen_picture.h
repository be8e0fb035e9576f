// A frame of an offscreen target as a picture.
#pragma once

#include <cstdint>
#include <vector>

#include "client/offscreen_target.h"
#include "data/picture.h"

namespace oct::app {

// Draws one frame with the function.
template <class Draw>
Picture draw_picture(OffscreenTarget& target, PictureSize size, Draw draw) {
  std::vector<std::uint8_t> pixels;
  target.render(size.width, size.height, pixels, draw);
  return to_picture(size, pixels);
}

}  // namespace oct::app
