#include "octrender/volume_input.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <iostream>
#include <sstream>

#include "command_line/progress.h"
#include "octrender/option_values.h"

namespace oct::app {
namespace {

std::string product_of(const std::array<std::size_t, 3>& numbers) {
  return std::to_string(numbers[0]) + " x " + std::to_string(numbers[1]) + " x " + std::to_string(numbers[2]);
}

// Of one image says what draws it.
template <class Read>
auto advised(Read read) {
  try {
    return read();
  } catch (const NoVolumeError& error) {
    throw ReadError(error, "Draw it with octrender bscan");
  }
}

}  // namespace

VolumeData read_volume(const DataFile& file, const VolumeLimits& limits) {
  VolumeData volume = advised([&] { return load_volume(file, limits, reading_progress(file.path)); });
  if (volume.is_reduced()) {
    note(file.path, "reduced " + product_of(volume.reduction) + " times, from " +
                        product_of(volume.file_size) + " to " + product_of(volume.sizes()) +
                        " voxels (depth, A-scans, B-scans)");
  }
  return volume;
}

VolumeFile open_volume(const DataFile& file) {
  return advised([&] { return VolumeFile(file); });
}

VolumeData read_part(VolumeFile& file, const VolumePart& part, bool decibels, bool finite) {
  const ProgressFunction progress = reading_progress(file.file().path);
  VolumeData volume = file.read(part, progress);
  if (decibels) to_decibels(volume.voxels);
  if (!finite || all_finite(volume.voxels)) return volume;
  const std::optional<ValueRange> bounds = file.finite_bounds(decibels, progress);
  if (bounds) replace_non_finite(volume.voxels, *bounds);
  return volume;
}

void check_extent(const std::vector<double>& extent) {
  for (const double number : extent) {
    if (!(std::isfinite(number) && number >= 1e-6 && number <= 1e6)) {
      throw CommandLineError("--extent: each extent must be from 0.000001 to 1000000 millimetres");
    }
  }
}

void take_extent(VolumeData& volume, const std::vector<double>& extent) {
  if (extent.empty()) return;
  for (std::size_t i = 0; i < 3; ++i) {
    volume.spacing.mm[i] = extent[i] / static_cast<double>(volume.file_size[i]);
  }
  volume.spacing.source = "command line";
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
