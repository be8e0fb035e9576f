#include "octview/model/document.h"

#include <atomic>
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

// Returns how many samples were not.
std::size_t make_finite(std::vector<float>& samples, const DataFile& file) {
  const std::size_t count = replace_non_finite(samples);
  if (count == samples.size()) throw ReadError(file.path, "there is no finite sample");
  return count;
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

Document load_document(const SessionFiles& files, const ProgressFunction& progress, const Document& before) {
  Document document;
  document.files = files;
  document.title = to_utf8(files.base.path.filename());
  if (before && before.files.base == files.base && before.files.decibels == files.decibels) {
    document.volume = before.volume;
    document.not_finite = before.not_finite;
  } else {
    VolumeData volume = load_any(files.base, progress);
    if (files.decibels) to_decibels(volume.voxels);
    document.not_finite = make_finite(volume.voxels, files.base);
    document.volume = std::make_shared<const VolumeData>(std::move(volume));
  }
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
