// The largest value of each brick of a volume: what no sample in it exceeds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "core/extent.h"

namespace oct {

// Bricks by axis, in the order of VolumeExtent.
struct BrickGrid {
  std::int64_t depth = 0;
  std::int64_t a_scans = 0;
  std::int64_t b_scans = 0;

  bool operator==(const BrickGrid&) const = default;
  std::size_t count() const { return static_cast<std::size_t>(depth * a_scans * b_scans); }
};

// What a texture makes of the values.
enum class BrickTexture {
  edges,                // as they are, the outermost ones beyond the rim
  edges_in_half_float,  // rounded to 16 bits
  border                // as they are, zeros beyond the rim
};

// A brick is as many steps between voxel centres as `side`, so that it touches one voxel more; neighbours share
// that layer. Slices (B-scans) come in any order and any number of times: each keeps maxima of its own, over its
// two axes, and a brick is put together from those of its slices. Voxels that are not numbers count as nothing. One
// thread at a time.
class BrickMaxima {
 public:
  BrickMaxima(const VolumeExtent& extent, int side, BrickTexture texture);

  struct BScan {
    const float* values;    // depth fastest
    std::int64_t stride;    // values from an A-scan to the next, of which the first `depth` are taken
    float* copy = nullptr;  // where they go on their way, packed, past the caches; null: nowhere
  };
  void take_b_scan(std::int64_t index, const BScan& b_scan);
  // The texture has lost them.
  void forget(std::int64_t first, std::int64_t end);

  // Everything that came in, by brick, depth fastest; infinity where something has not come, minus infinity where no
  // number is.
  const std::vector<float>& values();
  // The least and the greatest of them that are finite. Both 0 where none is.
  struct Range {
    float least = 0.0F;
    float greatest = 0.0F;
  };
  Range range();

  // The greatest of all values of the slices before `end`; infinity where one has not come, minus infinity where no
  // number is. And what no sample of the texture exceeds.
  struct Greatest {
    float value;
    float bound;
  };
  Greatest greatest(std::int64_t end) const;

  // Counts with every change, over the whole process.
  std::uint64_t revision() const { return revision_; }

  const VolumeExtent& extent() const { return extent_; }
  const BrickGrid& grid() const { return grid_; }
  int side() const { return side_; }

 private:
  std::size_t layer_size() const { return static_cast<std::size_t>(grid_.depth * grid_.a_scans); }
  float* slice(std::int64_t index) {
    return b_scans_.data() + static_cast<std::size_t>(index) * layer_size();
  }
  void changed(std::int64_t index);
  void merge(std::int64_t layer);

  const VolumeExtent extent_;
  const int side_;
  const BrickTexture texture_;
  const BrickGrid grid_;
  std::uint64_t revision_;
  std::vector<float> b_scans_;   // layer_size() for each
  std::vector<float> greatest_;  // by slice
  std::vector<float> values_;
  Range range_;
  std::vector<bool> outdated_;  // by layer of bricks
  std::vector<float> columns_;  // of the rows of one brick, while a B-scan is taken
};

}  // namespace oct
