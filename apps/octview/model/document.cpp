#include "octview/model/document.h"

#include <atomic>
#include <utility>

#include "data/block_means.h"
#include "data/image_reader.h"
#include "data/volume_reader.h"
#include "scene/drawable_limits.h"

namespace oct::app {
namespace {

VolumeData load_any(const DataFile& file, const VolumeLimits& limits, const ProgressFunction& progress) {
  try {
    return load_volume(file, limits, progress);
  } catch (const NoVolumeError&) {  // one B-scan
    Image image = load_image(file, {}, progress).image;
    VolumeData volume;
    volume.depth = image.depth;
    volume.ascans = image.ascans;
    volume.bscans = 1;
    volume.voxels = std::move(image.samples);
    volume.spacing = image.spacing;
    volume.file_size = {image.depth, image.ascans, 1};
    return volume;
  }
}

// Returns how many samples were not.
std::size_t make_finite(std::vector<float>& samples, const DataFile& file) {
  const std::size_t count = replace_non_finite(samples);
  if (count == samples.size()) throw ReadError(file.path, "there is no finite sample");
  return count;
}

struct LoadedVolume {
  std::shared_ptr<const VolumeData> whole;
  std::shared_ptr<const VolumeData> drawn;
  std::size_t not_finite = 0;
};

// Reduced in the order in which files are read, so that of equal axes the same is reduced.
std::array<std::size_t, 3> reduction_for(const VolumeData& volume, const DataFile& file,
                                         const VolumeLimits& drawable) {
  const AxisOrder order = file.axes.value_or(file.raw ? memory_order : picture_order);
  const std::array<std::size_t, 3> sizes = volume.sizes();
  std::array<std::size_t, 3> ordered{}, factors{};
  for (std::size_t i = 0; i < 3; ++i) ordered[i] = sizes[number_of(order[i])];
  const auto reduction = reduction_of(ordered, drawable.voxels_per_axis, drawable.bytes / sizeof(float));
  for (std::size_t i = 0; i < 3; ++i) factors[number_of(order[i])] = reduction[i];
  return factors;
}

// Means are those of the samples in the file: decibels come after them.
LoadedVolume load_whole(const DataFile& file, bool decibels, const ProgressFunction& progress,
                        const DocumentLimits& limits) {
  VolumeData volume = load_any(file, limits.memory, progress);
  LoadedVolume result;
  const VolumeLimits drawable = accepted_limits(limits.drawable, volume.voxels.size());
  const std::array<std::size_t, 3> factors = reduction_for(volume, file, drawable);
  if (factors != std::array<std::size_t, 3>{1, 1, 1}) {
    VolumeData small = reduced(volume, factors, progress);
    if (decibels) to_decibels(small.voxels);
    make_finite(small.voxels, file);
    result.drawn = std::make_shared<const VolumeData>(std::move(small));
  }
  if (decibels) to_decibels(volume.voxels);
  result.not_finite = make_finite(volume.voxels, file);
  result.whole = std::make_shared<const VolumeData>(std::move(volume));
  if (!result.drawn) result.drawn = result.whole;
  return result;
}

}  // namespace

std::string reduction_text(const VolumeData& volume) {
  const std::array<std::size_t, 3>& factors = volume.reduction;
  return "reduced " + std::to_string(factors[0]) + " x " + std::to_string(factors[1]) + " x " +
         std::to_string(factors[2]) + " times (depth, A-scans, B-scans)";
}

std::uint64_t next_revision() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

std::array<std::size_t, 3> Document::sizes() const {
  return volume->is_reduced() ? volume->file_size : volume->sizes();
}

VoxelSpacing Document::spacing() const {
  if (!volume) return {};
  const std::array<std::size_t, 3> samples = sizes();
  VoxelSpacing spacing = volume->spacing;
  if (files.extent) {
    for (std::size_t i = 0; i < 3; ++i) spacing.mm[i] = (*files.extent)[i] / static_cast<double>(samples[i]);
    spacing.source = "given by hand";
  }
  return spacing;
}

std::array<double, 3> Document::extent() const {
  if (!volume) return {1, 1, 1};
  if (files.extent) return *files.extent;
  const std::array<std::size_t, 3> samples = sizes();
  std::array<double, 3> extent{};
  for (std::size_t i = 0; i < 3; ++i)
    extent[i] = static_cast<double>(samples[i]) * (volume->spacing.is_known() ? volume->spacing.mm[i] : 1.0);
  return extent;
}

Document load_document(const SessionFiles& files, const ProgressFunction& progress, const Document& before,
                       const DocumentLimits& limits) {
  Document document;
  document.files = files;
  document.title = to_utf8(files.base.path.filename());
  if (before && before.files.base == files.base && before.files.decibels == files.decibels) {
    document.volume = before.volume;
    document.drawn_volume = before.drawn_volume;
    document.not_finite = before.not_finite;
  } else {
    LoadedVolume volume = load_whole(files.base, files.decibels, progress, limits);
    document.not_finite = volume.not_finite;
    document.volume = std::move(volume.whole);
    document.drawn_volume = std::move(volume.drawn);
  }
  if (!files.overlay.path.empty()) {
    LoadedVolume overlay = load_whole(files.overlay, false, progress, limits);
    if (overlay.whole->file_size != document.volume->file_size)
      throw ReadError(files.overlay.path, "the overlay has another size than the volume");
    document.overlay = std::move(overlay.whole);
    document.drawn_overlay = std::move(overlay.drawn);
  }
  if (!files.surface.path.empty()) {
    LateralMap map = load_height_map(files.surface, document.volume->file_size);
    document.surface = std::make_shared<const LateralMap>(map);
    make_finite(map.values, files.surface);
    document.drawn_surface = std::make_shared<const std::vector<float>>(std::move(map.values));
  }
  if (!files.secondary.path.empty()) {
    LateralMap map = load_lateral_map(files.secondary);
    make_finite(map.values, files.secondary);
    document.secondary = std::make_shared<const LateralMap>(std::move(map));
  }
  document.revision = next_revision();
  return document;
}

}  // namespace oct::app
