#include "volume/skipping/brick_maxima.h"

#include <algorithm>
#include <atomic>
#include <limits>

namespace oct {
namespace {

constexpr float nothing = -std::numeric_limits<float>::infinity();

// In this order of the operands a value that is no number loses.
void raise(float* maxima, const float* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) maxima[i] = values[i] > maxima[i] ? values[i] : maxima[i];
}

std::int64_t bricks(std::int64_t voxels, std::int64_t side) {
  return voxels <= 0 ? 0 : std::max<std::int64_t>(1, (voxels - 1 + side - 1) / side);
}

std::uint64_t next_revision() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

}  // namespace

BrickMaxima::BrickMaxima(const VolumeExtent& extent, int side)
    : extent_(extent),
      side_(side),
      grid_{bricks(extent.depth, side), bricks(extent.a_scans, side), bricks(extent.b_scans, side)},
      revision_(next_revision()),
      b_scans_(layer_size() * static_cast<std::size_t>(extent.b_scans), nothing),
      values_(grid_.count(), nothing),
      outdated_(static_cast<std::size_t>(grid_.b_scans)),
      columns_(static_cast<std::size_t>(extent.depth)) {}

void BrickMaxima::take_b_scan(std::int64_t index, const float* values) {
  float* maxima = b_scans_.data() + static_cast<std::size_t>(index) * layer_size();
  for (std::int64_t row = 0; row < grid_.a_scans; ++row) {
    const std::int64_t end = std::min((row + 1) * side_ + 1, extent_.a_scans);
    std::fill(columns_.begin(), columns_.end(), nothing);
    for (std::int64_t a_scan = row * side_; a_scan < end; ++a_scan)
      raise(columns_.data(), values + a_scan * extent_.depth, columns_.size());
    for (std::int64_t brick = 0; brick < grid_.depth; ++brick) {
      const auto first = columns_.begin() + brick * side_;
      *maxima++ = *std::max_element(first, first + std::min<std::int64_t>(side_ + 1, extent_.depth - brick * side_));
    }
  }
  revision_ = next_revision();
  // The last slice of a layer is the first of the next one as well.
  const std::int64_t layer = std::min(index / side_, grid_.b_scans - 1);
  outdated_[static_cast<std::size_t>(layer)] = true;
  if (index % side_ == 0 && index / side_ > 0) outdated_[static_cast<std::size_t>(index / side_ - 1)] = true;
}

const std::vector<float>& BrickMaxima::values() {
  for (std::int64_t layer = 0; layer < grid_.b_scans; ++layer) {
    if (outdated_[static_cast<std::size_t>(layer)]) merge(layer);
  }
  return values_;
}

void BrickMaxima::merge(std::int64_t layer) {
  float* const maxima = values_.data() + static_cast<std::size_t>(layer) * layer_size();
  std::fill_n(maxima, layer_size(), nothing);
  const std::int64_t end = std::min((layer + 1) * side_ + 1, extent_.b_scans);
  for (std::int64_t slice = layer * side_; slice < end; ++slice)
    raise(maxima, b_scans_.data() + static_cast<std::size_t>(slice) * layer_size(), layer_size());
  outdated_[static_cast<std::size_t>(layer)] = false;
}

}  // namespace oct
