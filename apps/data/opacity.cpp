#include "data/opacity.h"

#include <algorithm>
#include <cmath>

namespace oct::app {
namespace {

double curve(const std::vector<std::array<double, 2>>& points, double place) {
  if (points.empty()) return std::clamp(place, 0.0, 1.0) * std::clamp(place, 0.0, 1.0);
  if (place <= points.front()[0]) return points.front()[1];
  for (std::size_t i = 1; i < points.size(); ++i) {
    const auto& [from, low] = points[i - 1];
    const auto& [to, high] = points[i];
    if (place <= to) return to > from ? low + (high - low) * (place - from) / (to - from) : high;
  }
  return points.back()[1];
}

}  // namespace

void set_opacity(Colormap& colors, const OpacityRule& rule) {
  if (rule.shift == 0 && rule.points.empty()) {
    add_opacity_ramp(colors, rule.highest);
    return;
  }
  for (std::size_t i = 0; i < colors.size(); ++i) {
    const double place =
        static_cast<double>(i) / static_cast<double>(std::max<std::size_t>(colors.size() - 1, 1));
    colors[i][3] = static_cast<std::uint8_t>(
        std::lround(255 * std::clamp(rule.highest * curve(rule.points, place - rule.shift), 0.0, 1.0)));
  }
}

}  // namespace oct::app
