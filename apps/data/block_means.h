// Frames reduced by whole numbers along all three axes, while they come.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "data/formats/frames.h"
#include "data/progress_function.h"
#include "data/volume.h"

namespace oct::app {

// The smallest factors with which an array of these sizes keeps to the limits.
std::array<std::size_t, 3> reduction_of(std::array<std::size_t, 3> sizes, std::size_t limit_per_axis,
                                        std::uint64_t limit_in_all);

class BlockMeans {
 public:
  // Of columns, rows and frames.
  explicit BlockMeans(const std::array<std::size_t, 3>& factors) : factors_(factors) {}

  // Every frame has the size of the first. Samples that are not finite do not count.
  void add(const Raster& raster);

  bool is_complete() const { return frames_ == factors_[2]; }

  // The means of the frames so far; a block without any finite sample has none and becomes NaN.
  Raster take();

 private:
  std::array<std::size_t, 3> factors_;
  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  std::vector<double> sums_;
  std::vector<std::uint32_t> counts_;
  std::size_t frames_ = 0;
};

// The volume reduced by these factors of depth, A-scans and B-scans: what load_volume makes of the file with limits that ask for
// them.
VolumeData reduced(const VolumeData& volume, const std::array<std::size_t, 3>& factors,
                   const ProgressFunction& progress = no_progress);

}  // namespace oct::app
