#include "volume/skipping/visibility.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace oct {
namespace {

struct Ways {
  bool up;
  bool down;
};

// Nearly beside the box a ray's direction is a matter of rounding: both.
Ways ways_of(float eye, float w) {
  constexpr float margin = 1e-3F;
  const float reach = w == 0.0F ? margin : std::abs(w) * (1.0F + margin);
  const float from = w < 0.0F ? -eye : eye;
  return {from<reach, from> - reach};
}

}  // namespace

float composite_limit(const Colormap& colors, float lower, float upper) {
  const auto visible = std::ranges::find_if(colors, [](std::uint32_t color) { return alpha_of(color) != 0; });
  if (visible == colors.end()) return std::numeric_limits<float>::infinity();
  const auto clear = static_cast<double>(visible - colors.begin());
  if (clear < 1.0) return lower;
  // Between the last entry without opacity and the first one with it opacity begins.
  const double share = (clear - 0.5) / static_cast<double>(colors.size()) - 1e-5;
  return static_cast<float>(std::max<double>(lower, lower + share * (static_cast<double>(upper) - lower)));
}

std::array<bool, 8> octants_of(const glm::vec4& eye) {
  // The texture's axes are the model's y, x and z.
  const std::array<Ways, 3> ways{ways_of(eye.y, eye.w), ways_of(eye.x, eye.w), ways_of(eye.z, eye.w)};
  std::array<bool, 8> octants{};
  for (std::size_t i = 0; i < octants.size(); ++i) {
    octants[i] = true;
    for (std::size_t axis = 0; axis < ways.size(); ++axis)
      octants[i] = octants[i] && ((i >> axis & 1U) != 0 ? ways[axis].up : ways[axis].down);
  }
  return octants;
}

}  // namespace oct
