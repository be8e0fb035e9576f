#include "core/picture_part.h"

#include <cstdlib>
#include <stdexcept>

namespace oct {

PicturePart::ToTarget PicturePart::to_target(int target_width, int target_height) const {
  const auto scale = [](int whole, int target) { return static_cast<double>(whole) / target; };
  // The part's middle becomes 0.
  const auto offset = [&](int whole, int target, int first) {
    return static_cast<float>((static_cast<double>(whole) - target - 2.0 * first) / target);
  };
  return {{static_cast<float>(scale(width, target_width)), static_cast<float>(scale(height, target_height))},
          {offset(width, target_width, x), offset(height, target_height, y)}};
}

std::optional<PicturePart> PicturePart::of(unsigned width, unsigned height, int x, int y) {
  if (width == 0 && height == 0) return std::nullopt;
  constexpr unsigned most = 1U << 20;  // pixels are told apart in 32-bit floats
  constexpr auto limit = static_cast<long long>(most);
  const bool valid = width > 0 && height > 0 && width <= most && height <= most &&
                     std::abs(static_cast<long long>(x)) <= limit &&
                     std::abs(static_cast<long long>(y)) <= limit;
  if (!valid) throw std::invalid_argument("A picture in parts must have 1 to 1048576 pixels a side. ");
  return PicturePart{static_cast<int>(width), static_cast<int>(height), x, y};
}

}  // namespace oct
