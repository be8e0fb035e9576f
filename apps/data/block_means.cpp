#include "data/block_means.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace oct::app {
namespace {

std::size_t blocks_of(std::size_t size, std::size_t factor) {
  return (size - 1) / factor + 1;
}

}  // namespace

std::array<std::size_t, 3> reduction_of(std::array<std::size_t, 3> sizes, std::size_t limit_per_axis,
                                        std::uint64_t limit_in_all) {
  std::array<std::size_t, 3> factors{};
  for (std::size_t i = 0; i < 3; ++i) factors[i] = blocks_of(sizes[i], limit_per_axis);
  while (true) {
    std::array<std::size_t, 3> small{};
    for (std::size_t i = 0; i < 3; ++i) small[i] = blocks_of(sizes[i], factors[i]);
    const auto largest = std::ranges::max_element(small);
    if (std::uint64_t{small[0]} * small[1] <= limit_in_all / small[2] || *largest == 1) return factors;
    ++factors[static_cast<std::size_t>(largest - small.begin())];
  }
}

void BlockMeans::add(const Raster& raster) {
  rows_ = blocks_of(raster.rows, factors_[1]);
  columns_ = blocks_of(raster.columns, factors_[0]);
  sums_.resize(rows_ * columns_);
  counts_.resize(rows_ * columns_);
  for (std::size_t row = 0; row < raster.rows; ++row) {
    const float* sample = &raster.samples[row * raster.columns];
    std::size_t block = row / factors_[1] * columns_;
    for (std::size_t first = 0; first < raster.columns; first += factors_[0], ++block) {
      const std::size_t end = std::min(first + factors_[0], raster.columns);
      for (std::size_t column = first; column < end; ++column, ++sample) {
        if (!std::isfinite(*sample)) continue;
        sums_[block] += *sample;
        ++counts_[block];
      }
    }
  }
  ++frames_;
}

Raster BlockMeans::take() {
  Raster result{rows_, columns_, std::vector<float>(rows_ * columns_)};
  for (std::size_t i = 0; i < sums_.size(); ++i) {
    result.samples[i] =
        counts_[i] ? static_cast<float>(sums_[i] / counts_[i]) : std::numeric_limits<float>::quiet_NaN();
  }
  std::ranges::fill(sums_, 0.0);
  std::ranges::fill(counts_, 0U);
  frames_ = 0;
  return result;
}

VolumeData reduced(const VolumeData& volume, const std::array<std::size_t, 3>& factors,
                   const ProgressFunction& progress) {
  VolumeData result;
  result.depth = blocks_of(volume.depth, factors[0]);
  result.ascans = blocks_of(volume.ascans, factors[1]);
  result.bscans = blocks_of(volume.bscans, factors[2]);
  result.spacing = volume.spacing;
  result.file_size = volume.file_size;
  for (std::size_t i = 0; i < 3; ++i) result.reduction[i] = volume.reduction[i] * factors[i];
  result.voxels.reserve(result.depth * result.ascans * result.bscans);
  BlockMeans means(factors);
  Raster raster{volume.ascans, volume.depth, std::vector<float>(volume.ascans * volume.depth)};
  for (std::size_t b = 0; b < volume.bscans; ++b) {
    progress(b, volume.bscans);
    const auto first = volume.voxels.begin() + static_cast<std::ptrdiff_t>(b * raster.samples.size());
    std::copy_n(first, raster.samples.size(), raster.samples.begin());
    means.add(raster);
    if (!means.is_complete() && b + 1 < volume.bscans) continue;
    const Raster mean = means.take();
    result.voxels.insert(result.voxels.end(), mean.samples.begin(), mean.samples.end());
  }
  return result;
}

}  // namespace oct::app
