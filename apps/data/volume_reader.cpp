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
  VolumeReading(const DataFile& file, const VolumeLimits& limits)
      : file_(file), limits_(limits), data_(open_data(file)) {}

  VolumeData read(const ProgressFunction& progress) {
    const std::size_t frames = data_.frames->frame_count();
    for (std::size_t frame = 0; frame < frames; ++frame) {
      const Raster raster = data_.frames->read(frame, no_progress);
      progress(frame * raster.samples.size(), frames * raster.samples.size());
      if (frame == 0) prepare(raster.columns, raster.rows, frames);
      if (raster.columns != sizes_[0] || raster.rows != sizes_[1]) throw other_size(file_.path, frame);
      add(raster, frame);
    }
    volume_.spacing = voxel_spacing(*data_.frames, data_.axes);
    return std::move(volume_);
  }

 private:
  void prepare(std::size_t columns, std::size_t rows, std::size_t frames) {
    sizes_ = {columns, rows, frames};
    for (std::size_t i = 0; i < 3; ++i) {
      if (data_.axes[i] == Axis::bscan && sizes_[i] < 2) {
        throw NoVolumeError(file_.path, "this is one image; a volume has three axes (B-scan, depth, A-scan)");
      }
    }
    factors_ = reduction_of(sizes_, limits_.voxels_per_axis, limits_.bytes / sizeof(float));
    means_ = BlockMeans(factors_);
    Sizes small{};
    for (std::size_t i = 0; i < 3; ++i) {
      const unsigned axis = number_of(data_.axes[i]);
      small[axis] = (sizes_[i] - 1) / factors_[i] + 1;
      volume_.reduction[axis] = factors_[i];
      volume_.file_size[axis] = sizes_[i];
    }
    if (small[2] > max_voxels / small[0] / small[1]) {
      throw ReadError(file_.path, "the volume is too large (" + std::to_string(small[2]) + " B-scans of " +
                                      std::to_string(small[0]) + " x " + std::to_string(small[1]) +
                                      " samples)");
    }
    volume_.depth = small[0];
    volume_.ascans = small[1];
    volume_.bscans = small[2];
    volume_.voxels.resize(small[0] * small[1] * small[2]);
    const Sizes steps{1, small[0], small[0] * small[1]};
    for (std::size_t i = 0; i < 3; ++i) steps_[i] = steps[number_of(data_.axes[i])];
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

  const DataFile& file_;
  const VolumeLimits& limits_;
  OpenData data_;
  VolumeData volume_;
  // Of columns, rows and frames.
  Sizes sizes_{};
  Sizes factors_{1, 1, 1};
  Sizes steps_{};  // from one to the next in the volume
  BlockMeans means_{factors_};
};

}  // namespace

VolumeData load_volume(const DataFile& file, const VolumeLimits& limits, const ProgressFunction& progress) {
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

LateralMap load_height_map(const DataFile& file, const VolumeData& volume) {
  LateralMap map = load_lateral_map(file);
  const std::size_t ascans = volume.file_size[1], bscans = volume.file_size[2];
  if (map.bscans != bscans || map.ascans != ascans) {
    throw ReadError(file.path, "the height map has " + std::to_string(map.bscans) + " rows of " +
                                   std::to_string(map.ascans) + " samples; the volume has " +
                                   std::to_string(bscans) + " B-scans of " + std::to_string(ascans) +
                                   " A-scans");
  }
  return map;
}

}  // namespace oct::app
