#include "phantoms/duct_map.h"

#include <cmath>
#include <numbers>

#include "base/noise.h"

namespace oct::simulator {
namespace {

// Edge of a search cell, and mean distance of the ducts.
constexpr double cell_mm = 0.36;

// Ducts closer together than this are one.
constexpr double apart_mm = 0.28;

// Search cells along each side of the square that holds ducts: more than 12 millimetres.
constexpr int cells = 34;

int cell_index(double mm) {
  return static_cast<int>(std::floor(mm / cell_mm)) + cells / 2;
}

double distance(LateralPoint a, LateralPoint b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

DuctMap::DuctMap(std::uint64_t seed, const RidgePattern& ridges) : cells_(cells * cells) {
  for (int iy = 0; iy < cells; ++iy)
    for (int ix = 0; ix < cells; ++ix) {
      const auto dice = mix(seed, ix, iy);
      const LateralPoint start{(ix - cells / 2 + unit_interval(mix(dice, 1))) * cell_mm,
                               (iy - cells / 2 + unit_interval(mix(dice, 2))) * cell_mm};
      const auto axis = ridges.nearest_crest(start);
      const int cx = cell_index(axis.x);
      const int cy = cell_index(axis.y);
      if (!find_cell(cx, cy)) continue;
      bool crowded = false;
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
          if (const auto* cell = find_cell(cx + dx, cy + dy))
            for (const auto& other : *cell) crowded = crowded || distance(axis, other.axis) < apart_mm;
      if (!crowded) cell_at(cx, cy).push_back({axis, 2.0 * std::numbers::pi * unit_interval(mix(dice, 3))});
    }
}

const Duct* DuctMap::near(double x_mm, double y_mm) const {
  const Duct* nearest = nullptr;
  double best = reach_mm;
  for (int dy = -1; dy <= 1; ++dy)
    for (int dx = -1; dx <= 1; ++dx) {
      const auto* cell = find_cell(cell_index(x_mm) + dx, cell_index(y_mm) + dy);
      if (!cell) continue;
      for (const auto& duct : *cell) {
        const double away = distance({x_mm, y_mm}, duct.axis);
        if (away < best) {
          best = away;
          nearest = &duct;
        }
      }
    }
  return nearest;
}

std::vector<Duct>& DuctMap::cell_at(int ix, int iy) {
  return cells_[iy * cells + ix];
}

const std::vector<Duct>* DuctMap::find_cell(int ix, int iy) const {
  if (ix < 0 || iy < 0 || ix >= cells || iy >= cells) return nullptr;
  return &cells_[iy * cells + ix];
}

}  // namespace oct::simulator
