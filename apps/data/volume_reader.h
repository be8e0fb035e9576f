// Reads volumes, and maps that belong to them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "data/data_file.h"
#include "data/file_errors.h"
#include "data/progress_function.h"
#include "data/volume.h"

namespace oct::app {

// The file holds one image only.
class NoVolumeError : public ReadError {
  using ReadError::ReadError;
};

// What a volume in memory may take. A larger one is reduced while it is read.
struct VolumeLimits {
  std::size_t voxels_per_axis = std::size_t{1} << 20;
  std::uint64_t bytes = std::uint64_t{1} << 35;
};

VolumeData load_volume(const DataFile& file, const VolumeLimits& limits = {},
                       const ProgressFunction& progress = no_progress);

LateralMap load_lateral_map(const DataFile& file);  // of several frames the middle one

// A height map, one row per B-scan and one column per A-scan of the volume's file.
LateralMap load_height_map(const DataFile& file, const VolumeData& volume);

}  // namespace oct::app
