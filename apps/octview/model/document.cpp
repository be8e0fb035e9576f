#include "octview/model/document.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <utility>

#include "data/image_reader.h"
#include "data/volume_reader.h"

namespace oct::app {
namespace {

VolumeData load_any(const DataFile& file, const ProgressFunction& progress) {
  try {
    return load_volume(file, {}, progress);
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

// NaN and what is below all values become the lowest value, infinity the highest.
std::size_t make_finite(std::vector<float>& samples, const DataFile& file) {
  const auto is_finite = [](float value) { return std::isfinite(value); };
  const auto count = static_cast<std::size_t>(std::count_if(samples.begin(), samples.end(), is_finite));
  if (count == samples.size()) return 0;
  if (count == 0) throw ReadError(file.path, "the volume holds no finite sample");
  const std::optional<ValueRange> range = automatic_range(samples, {0, 1});
  replace_non_finite(samples, *range);
  return samples.size() - count;
}

}  // namespace

std::uint64_t next_revision() {
  static std::atomic<std::uint64_t> last{0};
  return ++last;
}

VoxelSpacing Document::spacing() const {
  if (!volume) return {};
  const std::array<std::size_t, 3> size{volume->depth, volume->ascans, volume->bscans};
  VoxelSpacing spacing = volume->spacing;
  if (files.extent) {
    for (std::size_t i = 0; i < 3; ++i) spacing.mm[i] = (*files.extent)[i] / static_cast<double>(size[i]);
    spacing.source = "given by hand";
    return spacing;
  }
  for (std::size_t i = 0; i < 3; ++i) spacing.mm[i] *= static_cast<double>(volume->reduction[i]);
  return spacing;
}

std::array<double, 3> Document::extent() const {
  if (!volume) return {1, 1, 1};
  const VoxelSpacing spacing = this->spacing();
  const std::array<std::size_t, 3> size{volume->depth, volume->ascans, volume->bscans};
  std::array<double, 3> extent{};
  for (std::size_t i = 0; i < 3; ++i)
    extent[i] = static_cast<double>(size[i]) * (spacing.is_known() ? spacing.mm[i] : 1.0);
  return extent;
}

Document load_document(const SessionFiles& files, const ProgressFunction& progress) {
  Document document;
  document.files = files;
  document.title = to_utf8(files.base.path.filename());
  VolumeData volume = load_any(files.base, progress);
  if (files.decibels) to_decibels(volume.voxels);
  document.not_finite = make_finite(volume.voxels, files.base);
  document.volume = std::make_shared<const VolumeData>(std::move(volume));
  if (!files.overlay.path.empty()) {
    VolumeData overlay = load_any(files.overlay, progress);
    const VolumeData& base = *document.volume;
    if (overlay.depth != base.depth || overlay.ascans != base.ascans || overlay.bscans != base.bscans)
      throw ReadError(files.overlay.path, "the overlay has another size than the volume");
    make_finite(overlay.voxels, files.overlay);
    document.overlay = std::make_shared<const VolumeData>(std::move(overlay));
  }
  if (!files.surface.path.empty()) {
    LateralMap map = load_height_map(files.surface, *document.volume);
    document.surface = std::make_shared<const std::vector<float>>(std::move(map.values));
  }
  if (!files.secondary.path.empty())
    document.secondary = std::make_shared<const LateralMap>(load_lateral_map(files.secondary));
  document.revision = next_revision();
  return document;
}

}  // namespace oct::app
