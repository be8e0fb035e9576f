#include "data/picture.h"

#include <algorithm>
#include <cmath>

namespace oct::app {
namespace {

constexpr double max_natural_side = 4096;

}  // namespace

PictureSize natural_picture_size(std::size_t depth, std::size_t ascans, const Spacing& spacing) {
  const double finest = std::min(spacing.depth, spacing.lateral);
  // A longer stretch would leave the other side without a pixel, whatever it is; and so no number overflows.
  const auto stretch = [finest](double distance) { return std::min(distance / finest, max_natural_side); };
  const double height = static_cast<double>(depth) * stretch(spacing.depth);
  const double width = static_cast<double>(ascans) * stretch(spacing.lateral);
  const double scale = std::min(1.0, max_natural_side / std::max(width, height));
  const auto side = [scale](double length) {
    return static_cast<unsigned>(std::max(1.0, std::round(length * scale)));
  };
  return {side(width), side(height)};
}

Picture without_background(const Picture& on_black, const Picture& on_white) {
  Picture result{on_black.size, {}, 4};
  const std::size_t count = on_black.pixels.size() / 3;
  result.pixels.resize(count * 4);
  for (std::size_t i = 0; i < count; ++i) {
    const std::uint8_t* const black = &on_black.pixels[i * 3];
    const std::uint8_t* const white = &on_white.pixels[i * 3];
    // The background's share is the same in every channel but for rounding. No colour may exceed 255.
    int share = 255;
    for (std::size_t channel = 0; channel < 3; ++channel)
      share = std::clamp(white[channel] - black[channel], 0, share);
    const int alpha = 255 - share;
    std::uint8_t* const pixel = &result.pixels[i * 4];
    for (std::size_t channel = 0; channel < 3; ++channel) {
      pixel[channel] = static_cast<std::uint8_t>(
          alpha == 0 ? 0 : std::min(255, (black[channel] * 255 + alpha / 2) / alpha));
    }
    pixel[3] = static_cast<std::uint8_t>(alpha);
  }
  return result;
}

Picture to_picture(PictureSize size, std::span<const std::uint8_t> rgba) {
  Picture picture{size, {}};
  picture.pixels.resize(rgba.size() / 4 * 3);
  for (std::size_t i = 0; i < rgba.size() / 4; ++i) std::copy_n(&rgba[i * 4], 3, &picture.pixels[i * 3]);
  return picture;
}

}  // namespace oct::app
