// A B-scan in memory.
#pragma once

#include <cstddef>
#include <vector>

#include "data/voxel_spacing.h"

namespace oct::app {

// Depth is fastest, as the library wants it: sample z of A-scan x lies at x * depth + z.
struct Image {
  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::vector<float> samples;
  VoxelSpacing spacing{};  // as far as the file tells it
};

}  // namespace oct::app
