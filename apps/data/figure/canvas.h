// Paper on which figures are put together.
#pragma once

#include <cstdint>
#include <utility>

#include "data/figure/lettering.h"
#include "data/picture.h"

namespace oct::app {

// Where on a text or beside it the given point lies.
enum class Alignment { start, middle, end };

// Places are pixels from the upper left corner. What lies outside is not drawn.
class Canvas {
 public:
  // paper: 0xRRGGBB. Transparent paper keeps its colour for those who ask, and the picture has four channels.
  Canvas(PictureSize size, std::uint32_t paper, bool transparent);

  std::uint32_t ink() const { return ink_; }  // black or white, whichever is seen on the paper

  void put(const Picture& picture, int x, int y);
  void fill(int x, int y, int width, int height, std::uint32_t color);
  void write(const TextPicture& text, int x, int y, Alignment across, Alignment down = Alignment::start);

  Picture take() { return std::move(picture_); }

 private:
  // alpha: 0 to 255
  void blend(int x, int y, const std::uint8_t* color, int alpha);

  Picture picture_;
  std::uint32_t ink_;
};

}  // namespace oct::app
