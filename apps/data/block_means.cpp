#include "data/block_means.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace oct::app {
namespace {

std::size_t reduced(std::size_t size, std::size_t factor) {
  return (size - 1) / factor + 1;
}

}  // namespace

std::array<std::size_t, 3> reduction_of(std::array<std::size_t, 3> sizes, std::size_t limit_per_axis,
                                        std::uint64_t limit_in_all) {
  std::array<std::size_t, 3> factors{};
  for (std::size_t i = 0; i < 3; ++i) factors[i] = reduced(sizes[i], limit_per_axis);
  while (true) {
    std::array<std::size_t, 3> small{};
    for (std::size_t i = 0; i < 3; ++i) small[i] = reduced(sizes[i], factors[i]);
    const auto largest = std::ranges::max_element(small);
    if (std::uint64_t{small[0]} * small[1] <= limit_in_all / small[2] || *largest == 1) return factors;
    ++factors[static_cast<std::size_t>(largest - small.begin())];
  }
}

void BlockMeans::add(const Raster& raster) {
  rows_ = reduced(raster.rows, factors_[1]);
  columns_ = reduced(raster.columns, factors_[0]);
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

}  // namespace oct::app
