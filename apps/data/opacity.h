// How much of what lies behind a voxel shows through, by the place of its value on the colour map.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "data/colormap.h"

namespace oct::app {

struct OpacityRule {
  double highest = 0.25;  // of one step of a ray, or of the view's opacity length
  double shift = 0;       // moves the curve along the map, by parts of it: above 0 fewer values are opaque
  // Places on the map with parts of the highest opacity, both 0 to 1, by place; between them it is linear, outside of them
  // as at the nearest; of two at one place the second begins what follows. Without points it rises with the square of the
  // place.
  std::vector<std::array<double, 2>> points;

  bool operator==(const OpacityRule&) const = default;
};

// What a rule's points have to be.
bool is_opacity_curve(std::span<const std::array<double, 2>> points);

double opacity_at(const OpacityRule& rule, double place);

void set_opacity(Colormap& colors, const OpacityRule& rule);

}  // namespace oct::app
