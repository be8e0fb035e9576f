// A volume in memory, and what lies over its lateral axes.
#pragma once

#include <cstddef>
#include <vector>

namespace oct::app {

// Depth is fastest, then A-scans, then B-scans, as the library wants it.
struct VolumeData {
  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  std::vector<float> voxels;
};

// Values over the two lateral axes: rows along the B-scans, columns along the A-scans.
struct LateralMap {
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  std::vector<float> values;
};

}  // namespace oct::app
