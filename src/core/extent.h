// Extents of images and volumes in samples. Depth, the direction of an A-scan, is the first axis: the fastest
// in memory and the first of a texture.
#pragma once

#include <cstdint>

namespace oct {

struct ImageExtent {
  std::int64_t depth = 0;  // samples of an A-scan
  std::int64_t a_scans = 0;

  bool operator==(const ImageExtent&) const = default;
};

struct VolumeExtent {
  std::int64_t depth = 0;    // samples of an A-scan
  std::int64_t a_scans = 0;  // of a B-scan
  std::int64_t b_scans = 0;

  bool operator==(const VolumeExtent&) const = default;
  bool empty() const { return depth < 1 || a_scans < 1 || b_scans < 1; }
};

}  // namespace oct
