// Reads volumes, and maps that belong to them.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "data/data_file.h"
#include "data/progress_function.h"
#include "data/volume.h"
#include "data/volume_file.h"

namespace oct::app {

// What a volume in memory may take. A larger one is reduced while it is read.
struct VolumeLimits {
  std::size_t voxels_per_axis = std::size_t{1} << 20;
  std::uint64_t bytes = std::uint64_t{1} << 35;
};

VolumeData load_volume(const DataFile& file, const VolumeLimits& limits = {},
                       const ProgressFunction& progress = no_progress);
VolumeData load_volume(VolumeFile& file, const VolumeLimits& limits, const ProgressFunction& progress);

LateralMap load_lateral_map(const DataFile& file);  // of several frames the middle one

// A height map, one row per B-scan and one column per A-scan of a volume whose file has these sizes (depth, A-scans, B-scans).
LateralMap load_height_map(const DataFile& file, const std::array<std::size_t, 3>& volume_size);

}  // namespace oct::app
