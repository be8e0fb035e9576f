// Volumes as the verbs read them, with progress on the error stream.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "data/samples.h"
#include "data/volume_reader.h"

namespace oct::app {

struct VolumeInput {
  std::string file;
  std::optional<RawLayout> raw;  // for a file without a header
  bool transpose = false;
};

VolumeData read_volume(const VolumeInput& input);

// What was given, or that of an automatic range. Without any finite voxel, fails with
// the name of where they came from.
ValueRange volume_range(const std::string& origin, const std::vector<float>& voxels,
                        const std::optional<ValueRange>& given, Shares shares);

}  // namespace oct::app
