#include "picture.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "failure.h"

namespace oct::app {
namespace {

constexpr unsigned kMaxSide = 16384;            // what most OpenGL drivers allow
constexpr std::uint64_t kMaxPixels = 1u << 27;  // 512 MiB of frame
constexpr double kMaxNaturalSide = 4096;

unsigned parseSide(const char*& text, const char* end) {
  unsigned value = 0;
  const auto [next, error] = std::from_chars(text, end, value);
  text = next;
  return error == std::errc() && value <= kMaxSide ? value : 0;
}

}  // namespace

PictureSize parsePictureSize(const std::string& text) {
  const char* next = text.data();
  const char* const end = next + text.size();
  PictureSize size;
  size.width = parseSide(next, end);
  if (next != end && *next == 'x') size.height = parseSide(++next, end);
  if (next != end || size.width == 0 || size.height == 0) {
    throw badCommandLine("--size: '" + text + "' is not WxH with sides from 1 to " +
                         std::to_string(kMaxSide));
  }
  if (std::uint64_t{size.width} * size.height > kMaxPixels) {
    throw badCommandLine("--size: " + text + " is more than " + std::to_string(kMaxPixels) + " pixels");
  }
  return size;
}

PictureSize naturalPictureSize(std::size_t depth, std::size_t ascans, const Spacing& spacing) {
  const double finest = std::min(spacing.depth, spacing.lateral);
  // A longer stretch would leave the other side without a pixel, whatever it is; and so no number overflows.
  const auto stretch = [finest](double distance) { return std::min(distance / finest, kMaxNaturalSide); };
  const double height = static_cast<double>(depth) * stretch(spacing.depth);
  const double width = static_cast<double>(ascans) * stretch(spacing.lateral);
  const double scale = std::min(1.0, kMaxNaturalSide / std::max(width, height));
  const auto side = [scale](double length) {
    return static_cast<unsigned>(std::max(1.0, std::round(length * scale)));
  };
  return {side(width), side(height)};
}

Picture toPicture(PictureSize size, std::span<const std::uint8_t> bgraBottomUp) {
  Picture picture{size, {}};
  picture.pixels.reserve(std::size_t{size.width} * size.height * 3);
  for (std::size_t row = size.height; row-- > 0;) {
    for (std::size_t column = 0; column < size.width; ++column) {
      const std::uint8_t* pixel = &bgraBottomUp[(row * size.width + column) * 4];
      picture.pixels.insert(picture.pixels.end(), {pixel[2], pixel[1], pixel[0]});
    }
  }
  return picture;
}

}  // namespace oct::app
