#include "data/opacity.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace oct::app {
namespace {

using Points = std::vector<std::array<double, 2>>;

double part_at(const Points& points, double place) {
  const auto after = std::ranges::find_if(points, [&](const auto& point) { return point[0] > place; });
  if (after == points.begin()) return points.front()[1];
  const auto before = after - 1;
  if (after == points.end()) return (*before)[1];
  return std::lerp((*before)[1], (*after)[1], (place - (*before)[0]) / ((*after)[0] - (*before)[0]));
}

}  // namespace

double opacity_at(const OpacityRule& rule, double place) {
  const double moved = std::clamp(place - rule.shift, 0.0, 1.0);
  return rule.points.empty() ? rule.highest * moved * moved : rule.highest * part_at(rule.points, moved);
}

void set_opacity(Colormap& colors, const OpacityRule& rule) {
  const double last = static_cast<double>(std::max<std::size_t>(colors.size(), 2) - 1);
  for (std::size_t i = 0; i < colors.size(); ++i) {
    const double opacity = opacity_at(rule, static_cast<double>(i) / last);
    colors[i][3] = static_cast<std::uint8_t>(std::lround(255 * std::clamp(opacity, 0.0, 1.0)));
  }
}

bool is_opacity_curve(std::span<const std::array<double, 2>> points) {
  const auto is_part = [](double value) { return value >= 0 && value <= 1; };
  return std::ranges::all_of(points, [&](const auto& p) { return is_part(p[0]) && is_part(p[1]); }) &&
         std::ranges::is_sorted(points, {}, [](const auto& point) { return point[0]; });
}

}  // namespace oct::app
