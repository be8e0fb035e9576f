#include "octrender/volume_input.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "command_line/memory_budget.h"
#include "command_line/progress.h"
#include "octrender/option_values.h"
#include "scene/drawable_limits.h"

namespace oct::app {
namespace {

std::string product_of(const std::array<std::size_t, 3>& numbers) {
  return std::to_string(numbers[0]) + " x " + std::to_string(numbers[1]) + " x " + std::to_string(numbers[2]);
}

VolumeData read_within(VolumeFile file, const VolumeLimits& limits) {
  const std::filesystem::path& path = file.file().path;
  VolumeData volume = load_volume(file, limits, reading_progress(path));
  if (volume.is_reduced()) {
    note(path, "reduced " + product_of(volume.reduction) + " times, from " + product_of(volume.file_size) +
                   " to " + product_of(volume.sizes()) + " voxels (depth, A-scans, B-scans)");
  }
  return volume;
}

}  // namespace

VolumeData read_volume(const DataFile& file) {
  return read_within(open_volume(file), {});
}

VolumeData read_drawable_volume(const DataFile& file) {
  VolumeFile open = open_volume(file);
  const auto& [depth, a_scans, b_scans] = open.sizes();
  const std::uint64_t voxels = std::uint64_t{depth} * a_scans * b_scans;
  const VolumeLimits limits = accepted_limits(within_memory(drawable_limits()), voxels);
  return read_within(std::move(open), limits);
}

VolumeFile open_volume(const DataFile& file) {
  try {
    return VolumeFile(file);
  } catch (const NoVolumeError& error) {
    throw ReadError(error, "Draw it with octrender bscan");
  }
}

void check_extent(const std::vector<double>& extent) {
  for (const double number : extent) {
    if (!(std::isfinite(number) && number >= 1e-6 && number <= 1e6)) {
      throw CommandLineError("--extent: each extent must be from 0.000001 to 1000000 millimetres");
    }
  }
}

void take_extent(VolumeData& volume, const std::vector<double>& extent) {
  if (!extent.empty()) volume.spacing = spacing_of(extent, volume.file_size);
}

VoxelSpacing spacing_of(const std::vector<double>& extent, const std::array<std::size_t, 3>& size) {
  VoxelSpacing spacing{{}, "command line"};
  for (std::size_t i = 0; i < 3; ++i) spacing.mm[i] = extent[i] / static_cast<double>(size[i]);
  return spacing;
}

std::string spacing_text(const VoxelSpacing& spacing) {
  std::ostringstream text;
  text << std::setprecision(6);
  for (std::size_t i = 0; i < 3; ++i) {
    text << (i ? " x " : "");
    if (spacing.mm[i] > 0) {
      text << spacing.mm[i];
    } else {
      text << "?";
    }
  }
  text << " mm (depth, A-scan, B-scan; " << spacing.source << ")";
  return text.str();
}

void note(const std::filesystem::path& file, const std::string& text) {
  std::cerr << "octrender: " << to_utf8(file) << ": " << text << std::endl;
}

ValueRange volume_range(const std::string& origin, const std::vector<float>& voxels,
                        const std::optional<ValueRange>& given, Shares shares) {
  if (given) return *given;
  const Progress progress("finding the display range", voxels.size());
  const std::optional<ValueRange> range = quick_range(voxels, shares);
  if (!range) throw ReadError(from_utf8(origin), "the volume holds no finite sample");
  return *range;
}

}  // namespace oct::app
