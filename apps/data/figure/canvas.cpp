#include "data/figure/canvas.h"

#include <array>
#include <utility>

namespace oct::app {
namespace {

std::array<std::uint8_t, 3> channels_of(std::uint32_t color) {
  return {static_cast<std::uint8_t>(color >> 16), static_cast<std::uint8_t>(color >> 8 & 0xFFU),
          static_cast<std::uint8_t>(color & 0xFFU)};
}

// By the shares of the channels in what the eye takes for brightness.
bool is_bright(std::uint32_t color) {
  const auto [red, green, blue] = channels_of(color);
  return 0.299 * red + 0.587 * green + 0.114 * blue > 127.5;
}

int start_of(int point, int length, Alignment alignment) {
  if (alignment == Alignment::start) return point;
  return alignment == Alignment::middle ? point - length / 2 : point - length;
}

}  // namespace

Canvas::Canvas(PictureSize size, std::uint32_t paper, bool transparent)
    : picture_{size, {}, transparent ? 4U : 3U}, ink_(is_bright(paper) ? 0x000000 : 0xFFFFFF) {
  const std::size_t count = std::size_t{size.width} * size.height;
  picture_.pixels.resize(count * picture_.channels);
  if (transparent) return;
  const auto channels = channels_of(paper);
  for (std::size_t i = 0; i < picture_.pixels.size(); ++i) picture_.pixels[i] = channels[i % 3];
}

void Canvas::put(const Picture& picture, int x, int y) {
  const auto [width, height] = picture.size;
  for (unsigned row = 0; row < height; ++row) {
    for (unsigned column = 0; column < width; ++column) {
      const std::uint8_t* const pixel =
          &picture.pixels[(std::size_t{row} * width + column) * picture.channels];
      blend(x + static_cast<int>(column), y + static_cast<int>(row), pixel,
            picture.channels == 4 ? pixel[3] : 255);
    }
  }
}

void Canvas::fill(int x, int y, int width, int height, std::uint32_t color) {
  const auto channels = channels_of(color);
  for (int row = y; row < y + height; ++row) {
    for (int column = x; column < x + width; ++column) blend(column, row, channels.data(), 255);
  }
}

void Canvas::write(const TextPicture& text, int x, int y, Alignment across, Alignment down) {
  const int left = start_of(x, text.width, across);
  const int top = start_of(y, text.height, down);
  const auto channels = channels_of(ink_);
  for (int row = 0; row < text.height; ++row) {
    for (int column = 0; column < text.width; ++column) {
      blend(left + column, top + row, channels.data(),
            text.coverage[static_cast<std::size_t>(row * text.width + column)]);
    }
  }
}

void Canvas::blend(int x, int y, const std::uint8_t* color, int alpha) {
  const auto [width, height] = picture_.size;
  if (alpha == 0 || x < 0 || y < 0 || x >= static_cast<int>(width) || y >= static_cast<int>(height)) return;
  std::uint8_t* const pixel =
      &picture_
           .pixels[(static_cast<std::size_t>(y) * width + static_cast<std::size_t>(x)) * picture_.channels];
  // What was there counts with what is left of it.
  const int below = picture_.channels == 4 ? pixel[3] : 255;
  const int left = (below * (255 - alpha) + 127) / 255;
  const int sum = alpha + left;
  for (int i = 0; i < 3; ++i) {
    pixel[i] = static_cast<std::uint8_t>((color[i] * alpha + pixel[i] * left + sum / 2) / sum);
  }
  if (picture_.channels == 4) pixel[3] = static_cast<std::uint8_t>(sum);
}

}  // namespace oct::app
