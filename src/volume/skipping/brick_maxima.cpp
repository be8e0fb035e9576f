#include "volume/skipping/brick_maxima.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <limits>

#include "vec/vec.h"

namespace oct {
namespace {

constexpr float unknown = std::numeric_limits<float>::infinity();
constexpr float nothing = -std::numeric_limits<float>::infinity();

std::int64_t bricks(std::int64_t voxels, std::int64_t side) {
  return voxels <= 0 ? 0 : std::max<std::int64_t>(1, (voxels - 1 + side - 1) / side);
}

std::uint64_t next_revision() {
  static std::atomic<std::uint64_t> last = 0;
  return ++last;
}

// At least what 16 bits make of it; those that they do not hold become infinite.
float rounded_up(float value) {
  constexpr float largest = 65504.0F;
  if (!std::isfinite(value)) return value;
  const float bound = value + std::abs(value) / 1024.0F + 1e-7F;
  return bound > largest ? unknown : bound;
}

}  // namespace

BrickMaxima::BrickMaxima(const VolumeExtent& extent, int side, BrickTexture texture)
    : extent_(extent),
      side_(side),
      texture_(texture),
      grid_{bricks(extent.depth, side), bricks(extent.a_scans, side), bricks(extent.b_scans, side)},
      revision_(next_revision()),
      b_scans_(layer_size() * static_cast<std::size_t>(extent.b_scans), unknown),
      greatest_(static_cast<std::size_t>(extent.b_scans), unknown),
      values_(grid_.count(), unknown),
      outdated_(static_cast<std::size_t>(grid_.b_scans)),
      columns_(static_cast<std::size_t>(extent.depth)) {}

// The rows of one brick after the other, while they are in the nearest cache: first copied, then looked at.
void BrickMaxima::take_b_scan(std::int64_t index, const BScan& b_scan) {
  const auto length = static_cast<std::size_t>(extent_.depth);
  const std::size_t whole = length * static_cast<std::size_t>(extent_.a_scans * extent_.b_scans);
  float* maxima = slice(index);
  for (std::int64_t row = 0; row < grid_.a_scans; ++row) {
    const std::int64_t first = row * side_;
    const std::int64_t end = std::min(first + side_ + 1, extent_.a_scans);
    const std::int64_t next = row + 1 < grid_.a_scans ? first + side_ : end;
    if (b_scan.copy) {
      vec::crop_copy(b_scan.copy + first * extent_.depth, b_scan.values + first * b_scan.stride,
                     static_cast<std::size_t>(next - first), static_cast<std::size_t>(b_scan.stride), length,
                     whole);
    }
    std::fill(columns_.begin(), columns_.end(), nothing);
    for (std::int64_t a_scan = first; a_scan < end; ++a_scan)
      vec::raise(columns_.data(), b_scan.values + a_scan * b_scan.stride, length);
    for (std::int64_t brick = 0; brick < grid_.depth; ++brick) {
      const float* const from = columns_.data() + brick * side_;
      *maxima++ =
          *std::max_element(from, from + std::min<std::int64_t>(side_ + 1, extent_.depth - brick * side_));
    }
  }
  greatest_[static_cast<std::size_t>(index)] = vec::extremes(slice(index), layer_size()).highest;
  changed(index);
}

void BrickMaxima::forget(std::int64_t first, std::int64_t end) {
  for (std::int64_t index = first; index < end; ++index) {
    std::fill_n(slice(index), layer_size(), unknown);
    greatest_[static_cast<std::size_t>(index)] = unknown;
    changed(index);
  }
}

// The last slice of a layer is the first of the next one as well.
void BrickMaxima::changed(std::int64_t index) {
  revision_ = next_revision();
  const std::int64_t layer = std::min(index / side_, grid_.b_scans - 1);
  outdated_[static_cast<std::size_t>(layer)] = true;
  if (index % side_ == 0 && index / side_ > 0) outdated_[static_cast<std::size_t>(index / side_ - 1)] = true;
}

const std::vector<float>& BrickMaxima::values() {
  if (std::ranges::find(outdated_, true) == outdated_.end()) return values_;
  for (std::int64_t layer = 0; layer < grid_.b_scans; ++layer) {
    if (outdated_[static_cast<std::size_t>(layer)]) merge(layer);
  }
  range_ = {unknown, nothing};
  for (const float value : values_) {
    if (std::isfinite(value)) range_ = {std::min(range_.least, value), std::max(range_.greatest, value)};
  }
  if (range_.least > range_.greatest) range_ = {};
  return values_;
}

BrickMaxima::Range BrickMaxima::range() {
  values();
  return range_;
}

BrickMaxima::Greatest BrickMaxima::greatest(std::int64_t end) const {
  float value = nothing;
  for (std::int64_t i = 0; i < std::min(end, extent_.b_scans); ++i)
    value = std::max(value, greatest_[static_cast<std::size_t>(i)]);
  switch (texture_) {
    case BrickTexture::edges_in_half_float:
      return {value, rounded_up(value)};
    case BrickTexture::border:
      return {value, std::max(value, 0.0F)};
    case BrickTexture::edges:
      break;
  }
  return {value, value};
}

void BrickMaxima::merge(std::int64_t layer) {
  float* const maxima = values_.data() + static_cast<std::size_t>(layer) * layer_size();
  std::fill_n(maxima, layer_size(), nothing);
  const std::int64_t end = std::min((layer + 1) * side_ + 1, extent_.b_scans);
  for (std::int64_t index = layer * side_; index < end; ++index)
    vec::raise(maxima, slice(index), layer_size());
  if (texture_ == BrickTexture::edges_in_half_float)
    std::transform(maxima, maxima + layer_size(), maxima, rounded_up);
  if (texture_ == BrickTexture::border) {
    const auto at_rim = [](std::int64_t i, std::int64_t count) { return i == 0 || i == count - 1; };
    for (std::int64_t row = 0; row < grid_.a_scans; ++row) {
      for (std::int64_t brick = 0; brick < grid_.depth; ++brick) {
        float& value = maxima[row * grid_.depth + brick];
        if (at_rim(layer, grid_.b_scans) || at_rim(row, grid_.a_scans) || at_rim(brick, grid_.depth))
          value = std::max(value, 0.0F);
      }
    }
  }
  outdated_[static_cast<std::size_t>(layer)] = false;
}

}  // namespace oct
