#include "data/slices.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <cmath>
#include <limits>
#include <span>
#include <vector>

namespace oct::app {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();
constexpr std::size_t most_layers = std::size_t{1} << 30;  // whatever the depth
constexpr std::size_t lanes = 8;  // sums that run side by side, for the compiler to put into one register

float mean_of(std::span<const float> samples) {
  std::array<double, lanes> sums{};
  const std::size_t whole = samples.size() / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    for (std::size_t k = 0; k < lanes; ++k) sums[k] += static_cast<double>(samples[i + k]);
  }
  double sum = 0;
  for (const double part : sums) sum += part;
  for (std::size_t i = whole; i < samples.size(); ++i) sum += static_cast<double>(samples[i]);
  if (std::isfinite(sum)) return static_cast<float>(sum / static_cast<double>(samples.size()));
  // One that is not finite makes the whole sum so.
  sum = 0;
  std::size_t count = 0;
  for (const float sample : samples) {
    if (!std::isfinite(sample)) continue;
    sum += static_cast<double>(sample);
    ++count;
  }
  return count > 0 ? static_cast<float>(sum / static_cast<double>(count)) : nan;
}

float maximum_of(std::span<const float> samples) {
  std::array<float, lanes> highest;
  highest.fill(-std::numeric_limits<float>::infinity());
  const std::size_t whole = samples.size() / lanes * lanes;
  for (std::size_t i = 0; i < whole; i += lanes) {
    for (std::size_t k = 0; k < lanes; ++k)
      highest[k] = samples[i + k] > highest[k] ? samples[i + k] : highest[k];
  }
  for (std::size_t i = whole; i < samples.size(); ++i) highest[0] = std::fmax(highest[0], samples[i]);
  const float result = *std::ranges::max_element(highest);
  const bool none =
      result < -FLT_MAX && std::ranges::all_of(samples, [](float sample) { return std::isnan(sample); });
  return none ? nan : result;
}

float projection_of(std::span<const float> samples, Projection projection) {
  if (samples.empty()) return nan;
  if (samples.size() == 1) return samples[0];
  return projection == Projection::mean ? mean_of(samples) : maximum_of(samples);
}

// Rows of samples become columns. In squares that the nearest cache holds with their lines.
void transpose(const std::vector<float>& from, std::size_t rows, std::size_t columns,
               std::vector<float>& to) {
  constexpr std::size_t side = 32;
  for (std::size_t first_row = 0; first_row < rows; first_row += side) {
    const std::size_t last_row = std::min(rows, first_row + side);
    for (std::size_t first = 0; first < columns; first += side) {
      const std::size_t last = std::min(columns, first + side);
      for (std::size_t column = first; column < last; ++column) {
        for (std::size_t row = first_row; row < last_row; ++row)
          to[column * rows + row] = from[row * columns + column];
      }
    }
  }
}

// The voxel, of several samples each; none where the surface has no depth.
std::optional<std::ptrdiff_t> voxel_of(float depth, std::size_t samples) {
  if (!(std::abs(depth) < 1e9F)) return std::nullopt;  // infinity neither
  const double voxel = (static_cast<double>(depth) + 0.5) / static_cast<double>(samples);
  return static_cast<std::ptrdiff_t>(std::floor(voxel));
}

// Where en-face sections lie: the depth of each A-scan that a section's own depth counts from.
class Origin {
 public:
  Origin(const VolumeData& volume, const LateralMap* surface) : volume_(volume), surface_(surface) {}

  // The nearest voxel; none where the surface has no depth.
  std::optional<std::ptrdiff_t> operator()(std::size_t bscan, std::size_t ascan) const {
    if (!surface_) return 0;
    const std::size_t row = (2 * bscan + 1) * surface_->bscans / (2 * volume_.bscans);
    const std::size_t column = (2 * ascan + 1) * surface_->ascans / (2 * volume_.ascans);
    return voxel_of(surface_->values[row * surface_->ascans + column], volume_.reduction[0]);
  }

 private:
  const VolumeData& volume_;
  const LateralMap* surface_;
};

void draw_enface(const VolumeData& volume, std::ptrdiff_t position, const EnFace& enface,
                 const Origin& origin, std::vector<float>& result) {
  const auto depth = static_cast<std::ptrdiff_t>(volume.depth);
  const auto layers = static_cast<std::ptrdiff_t>(std::min(enface.layers, most_layers));
  std::vector<float> rows(result.size(),
                          nan);  // in the order of the volume, which is read once from front to end
  for (std::size_t bscan = 0; bscan < volume.bscans; ++bscan) {
    for (std::size_t ascan = 0; ascan < volume.ascans; ++ascan) {
      const std::optional<std::ptrdiff_t> zero = origin(bscan, ascan);
      if (!zero) continue;
      const std::ptrdiff_t first = *zero + position - layers / 2;
      const auto begin = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(first, 0, depth));
      const auto end = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(first + layers, 0, depth));
      const std::size_t index = bscan * volume.ascans + ascan;
      const float* const a_scan = &volume.voxels[index * volume.depth];
      rows[index] = projection_of({a_scan + begin, end - begin}, enface.projection);
    }
  }
  transpose(rows, volume.bscans, volume.ascans, result);
}

}  // namespace

std::optional<SliceAxis> find_slice_axis(std::string_view name) {
  if (name == "bscan") return SliceAxis::bscan;
  if (name == "enface") return SliceAxis::enface;
  if (name == "third") return SliceAxis::third;
  return std::nullopt;
}

SliceAxes axes_of(SliceAxis axis) {
  if (axis == SliceAxis::bscan) return {0, 1, 2};
  if (axis == SliceAxis::enface) return {2, 1, 0};
  return {0, 2, 1};
}

VoxelSpacing section_spacing(const VoxelSpacing& volume, SliceAxis axis) {
  const SliceAxes axes = axes_of(axis);
  return {{volume.mm[axes.down], volume.mm[axes.right], volume.mm[axes.across]}, volume.source};
}

Image slice_of(const VolumeData& volume, SliceAxis axis, std::ptrdiff_t position, const EnFace& enface,
               const LateralMap* surface) {
  const std::array<std::size_t, 3> sizes = volume.sizes();
  const SliceAxes axes = axes_of(axis);
  Image image{sizes[axes.down], sizes[axes.right], {}, {}};
  image.samples.assign(image.depth * image.ascans, nan);
  VoxelSpacing spacing = volume.spacing;
  for (std::size_t i = 0; i < 3; ++i) spacing.mm[i] *= static_cast<double>(volume.reduction[i]);
  image.spacing = section_spacing(spacing, axis);
  if (axis == SliceAxis::enface) {
    draw_enface(volume, position, enface, {volume, enface.along_surface ? surface : nullptr}, image.samples);
    return image;
  }
  if (position < 0 || static_cast<std::size_t>(position) >= sizes[axes.across]) return image;
  const auto at = static_cast<std::size_t>(position);
  if (axis == SliceAxis::bscan) {
    std::copy_n(&volume.voxels[at * image.samples.size()], image.samples.size(), image.samples.data());
  } else {
    for (std::size_t bscan = 0; bscan < volume.bscans; ++bscan) {
      std::copy_n(&volume.voxels[(bscan * volume.ascans + at) * volume.depth], volume.depth,
                  &image.samples[bscan * volume.depth]);
    }
  }
  return image;
}

VolumePart part_of_slice(const std::array<std::size_t, 3>& sizes, SliceAxis axis, std::ptrdiff_t position,
                         const EnFace& enface, const LateralMap* surface) {
  std::ptrdiff_t first = position, last = position;
  if (axis == SliceAxis::enface) {
    std::ptrdiff_t lowest = 0, highest = 0;
    if (enface.along_surface && surface) {
      lowest = std::numeric_limits<std::ptrdiff_t>::max();
      highest = std::numeric_limits<std::ptrdiff_t>::min();
      for (const float depth : surface->values) {
        const std::optional<std::ptrdiff_t> voxel = voxel_of(depth, 1);
        lowest = std::min(lowest, voxel.value_or(lowest));
        highest = std::max(highest, voxel.value_or(highest));
      }
      if (lowest > highest) lowest = highest = 0;
    }
    const auto layers = static_cast<std::ptrdiff_t>(std::min(enface.layers, most_layers));
    first = lowest + position - layers / 2;
    last = highest + position - layers / 2 + layers - 1;
  }
  const std::size_t across = axes_of(axis).across;
  const std::ptrdiff_t end = static_cast<std::ptrdiff_t>(sizes[across]) - 1;
  VolumePart part{{}, sizes};
  part.begin[across] = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(first, 0, end));
  part.end[across] = static_cast<std::size_t>(std::clamp<std::ptrdiff_t>(last, 0, end)) + 1;
  return part;
}

}  // namespace oct::app
