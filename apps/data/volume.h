// A volume in memory, and what lies over its lateral axes.
#pragma once

#include <array>
#include <cstddef>
#include <vector>

#include "data/voxel_spacing.h"

namespace oct::app {

// Depth is fastest, then A-scans, then B-scans, as the library wants it.
struct VolumeData {
  std::size_t depth = 0;
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  std::vector<float> voxels;
  // Between the samples of the file, of which so many along each axis became one voxel.
  VoxelSpacing spacing{};
  std::array<std::size_t, 3> reduction{1, 1, 1};
  // Depth, A-scans and B-scans in the file; of a volume that is from no file zeros.
  std::array<std::size_t, 3> file_size{};

  std::array<std::size_t, 3> sizes() const { return {depth, ascans, bscans}; }
  bool is_reduced() const { return reduction != std::array<std::size_t, 3>{1, 1, 1}; }
};

// Voxels from begin on and before end, along depth, A-scans and B-scans.
struct VolumePart {
  std::array<std::size_t, 3> begin{};
  std::array<std::size_t, 3> end{};

  std::size_t voxels() const { return (end[0] - begin[0]) * (end[1] - begin[1]) * (end[2] - begin[2]); }
};

// Values over the two lateral axes: rows along the B-scans, columns along the A-scans.
struct LateralMap {
  std::size_t ascans = 0;
  std::size_t bscans = 0;
  std::vector<float> values;
};

}  // namespace oct::app
