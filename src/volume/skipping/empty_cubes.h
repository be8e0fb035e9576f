// How far a ray may jump from a brick without passing anything visible.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

#include "volume/skipping/brick_maxima.h"

namespace oct {

// Whether rays go towards greater indices, by axis.
struct Octant {
  bool depth = true;
  bool a_scans = true;
  bool b_scans = true;
};

// For each brick 0 where it is visible, that is where its maximum exceeds the limit, else the side in bricks of
// the largest cube of such bricks that begins there and extends only the way the rays of the octant go. One-sided
// cubes are far larger than symmetric ones just behind a surface. Beyond the grid all is empty; sides end at 255.
void find_empty_cubes(std::span<const float> maxima, const BrickGrid& grid, float limit, Octant octant,
                      std::span<std::uint8_t> sides);

}  // namespace oct
