#include "data/volume_reader.h"

#include <array>
#include <utility>

#include "data/block_means.h"
#include "data/image_reader.h"

namespace oct::app {
namespace {

constexpr std::uint64_t max_voxels = std::uint64_t{1} << 33;  // 32 GiB of floats

using Sizes = std::array<std::size_t, 3>;

class VolumeReading {
 public:
  VolumeReading(VolumeFile& file, const VolumeLimits& limits) : limits_(limits), file_(file) {}

  VolumeData read(const ProgressFunction& progress) {
    prepare();
    const std::size_t frames = sizes_[2];
    file_.read_frames(0, frames, progress,
                      [&](std::size_t frame, const Raster& raster) { add(raster, frame); });
    volume_.spacing = file_.spacing();
    return std::move(volume_);
  }

 private:
  void prepare() {
    const AxisOrder& axes = file_.axes();
    for (std::size_t i = 0; i < 3; ++i) sizes_[i] = file_.sizes()[number_of(axes[i])];
    factors_ = reduction_of(sizes_, limits_.voxels_per_axis, limits_.bytes / sizeof(float));
    means_ = BlockMeans(factors_);
    Sizes small{};
    for (std::size_t i = 0; i < 3; ++i) {
      const unsigned axis = number_of(axes[i]);
      small[axis] = (sizes_[i] - 1) / factors_[i] + 1;
      volume_.reduction[axis] = factors_[i];
    }
    volume_.file_size = file_.sizes();
    if (small[2] > max_voxels / small[0] / small[1]) {
      throw ReadError(file_.file().path, "the volume is too large (" + std::to_string(small[2]) +
                                             " B-scans of " + std::to_string(small[0]) + " x " +
                                             std::to_string(small[1]) + " samples)");
    }
    volume_.depth = small[0];
    volume_.ascans = small[1];
    volume_.bscans = small[2];
    volume_.voxels.resize(small[0] * small[1] * small[2]);
    const Sizes steps{1, small[0], small[0] * small[1]};
    for (std::size_t i = 0; i < 3; ++i) steps_[i] = steps[number_of(axes[i])];
  }

  void add(const Raster& raster, std::size_t frame) {
    if (!volume_.is_reduced()) {
      place(raster, &volume_.voxels[frame * steps_[2]], steps_[0], steps_[1]);
      return;
    }
    means_.add(raster);
    if (!means_.is_complete() && frame + 1 < sizes_[2]) return;
    place(means_.take(), &volume_.voxels[frame / factors_[2] * steps_[2]], steps_[0], steps_[1]);
  }

  const VolumeLimits& limits_;
  VolumeFile& file_;
  VolumeData volume_;
  // Of columns, rows and frames.
  Sizes sizes_{};
  Sizes factors_{1, 1, 1};
  Sizes steps_{};  // from one to the next in the volume
  BlockMeans means_{factors_};
};

}  // namespace

VolumeData load_volume(const DataFile& file, const VolumeLimits& limits, const ProgressFunction& progress) {
  VolumeFile open(file);
  return load_volume(open, limits, progress);
}

VolumeData load_volume(VolumeFile& file, const VolumeLimits& limits, const ProgressFunction& progress) {
  return VolumeReading(file, limits).read(progress);
}

LateralMap load_lateral_map(const DataFile& file) {
  FrameChoice choice;
  choice.single_fits = true;
  // Rows as A-scans: what lies in a row of the file stays together in memory.
  DataFile map = file;
  map.axes = memory_order;
  Image image = load_image(map, choice).image;
  return {image.depth, image.ascans, std::move(image.samples)};
}

LateralMap load_height_map(const DataFile& file, const std::array<std::size_t, 3>& volume_size) {
  LateralMap map = load_lateral_map(file);
  const std::size_t ascans = volume_size[1], bscans = volume_size[2];
  if (map.bscans != bscans || map.ascans != ascans) {
    throw ReadError(file.path, "the height map has " + std::to_string(map.bscans) + " rows of " +
                                   std::to_string(map.ascans) + " samples; the volume has " +
                                   std::to_string(bscans) + " B-scans of " + std::to_string(ascans) +
                                   " A-scans");
  }
  return map;
}

}  // namespace oct::app
