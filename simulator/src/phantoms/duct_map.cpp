#include "phantoms/duct_map.h"

#include "base/noise.h"

#include <cmath>
#include <numbers>

namespace oct::simulator {
namespace {

/// Edge of a search cell, and mean distance of the ducts.
constexpr double kCellMm = 0.36;

/// Ducts closer together than this are one.
constexpr double kApartMm = 0.28;

/// Search cells along each side of the square that holds ducts: more than 12 millimetres.
constexpr int kCells = 34;

int cellIndex(double mm) {
  return static_cast<int>(std::floor(mm / kCellMm)) + kCells / 2;
}

double distance(LateralPoint a, LateralPoint b) {
  return std::hypot(a.x - b.x, a.y - b.y);
}

}  // namespace

DuctMap::DuctMap(std::uint64_t seed, const RidgePattern& ridges) : cells_(kCells * kCells) {
  for (int iy = 0; iy < kCells; ++iy)
    for (int ix = 0; ix < kCells; ++ix) {
      const auto dice = mix(seed, ix, iy);
      const LateralPoint start{(ix - kCells / 2 + unitInterval(mix(dice, 1))) * kCellMm,
                               (iy - kCells / 2 + unitInterval(mix(dice, 2))) * kCellMm};
      const auto axis = ridges.nearestCrest(start);
      const int cx = cellIndex(axis.x);
      const int cy = cellIndex(axis.y);
      if (!findCell(cx, cy)) continue;
      bool crowded = false;
      for (int dy = -1; dy <= 1; ++dy)
        for (int dx = -1; dx <= 1; ++dx)
          if (const auto* cell = findCell(cx + dx, cy + dy))
            for (const auto& other : *cell) crowded = crowded || distance(axis, other.axis) < kApartMm;
      if (!crowded) cellAt(cx, cy).push_back({axis, 2.0 * std::numbers::pi * unitInterval(mix(dice, 3))});
    }
}

const Duct* DuctMap::near(double xMm, double yMm) const {
  const Duct* nearest = nullptr;
  double best = kReachMm;
  for (int dy = -1; dy <= 1; ++dy)
    for (int dx = -1; dx <= 1; ++dx) {
      const auto* cell = findCell(cellIndex(xMm) + dx, cellIndex(yMm) + dy);
      if (!cell) continue;
      for (const auto& duct : *cell) {
        const double away = distance({xMm, yMm}, duct.axis);
        if (away < best) {
          best = away;
          nearest = &duct;
        }
      }
    }
  return nearest;
}

std::vector<Duct>& DuctMap::cellAt(int ix, int iy) {
  return cells_[iy * kCells + ix];
}

const std::vector<Duct>* DuctMap::findCell(int ix, int iy) const {
  if (ix < 0 || iy < 0 || ix >= kCells || iy >= kCells) return nullptr;
  return &cells_[iy * kCells + ix];
}

}  // namespace oct::simulator
