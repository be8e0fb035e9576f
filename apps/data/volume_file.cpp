#include "data/volume_file.h"

#include <utility>

namespace oct::app {
namespace {

Raster cut_out(const Raster& raster, std::size_t left, std::size_t right, std::size_t top,
               std::size_t bottom) {
  Raster part{bottom - top, right - left, {}};
  part.samples.reserve(part.rows * part.columns);
  for (std::size_t row = top; row < bottom; ++row) {
    const auto begin = raster.samples.begin() + static_cast<std::ptrdiff_t>(row * raster.columns);
    part.samples.insert(part.samples.end(), begin + static_cast<std::ptrdiff_t>(left),
                        begin + static_cast<std::ptrdiff_t>(right));
  }
  return part;
}

}  // namespace

VolumeFile::VolumeFile(const DataFile& file)
    : file_(file), data_(open_data(file)), first_(data_.frames->read(0, no_progress)) {
  columns_ = first_->columns;
  rows_ = first_->rows;
  const std::array<std::size_t, 3> in_file{columns_, rows_, data_.frames->frame_count()};
  for (std::size_t i = 0; i < 3; ++i) {
    if (data_.axes[i] == Axis::bscan && in_file[i] < 2) {
      throw NoVolumeError(file_.path, "this is one image; a volume has three axes (B-scan, depth, A-scan)");
    }
    sizes_[number_of(data_.axes[i])] = in_file[i];
  }
}

void VolumeFile::read_frames(std::size_t begin, std::size_t end, const ProgressFunction& progress,
                             const FrameFunction& take) {
  const std::size_t samples = columns_ * rows_;
  for (std::size_t frame = begin; frame < end; ++frame) {
    progress((frame - begin) * samples, (end - begin) * samples);
    std::optional<Raster> raster;
    if (frame == 0) raster = std::exchange(first_, std::nullopt);
    if (!raster) raster = data_.frames->read(frame, no_progress);
    if (raster->columns != columns_ || raster->rows != rows_) throw other_size(file_.path, frame);
    take(frame, *raster);
  }
}

VolumeData VolumeFile::read(const VolumePart& part, const ProgressFunction& progress) {
  VolumeData volume;
  volume.depth = part.end[0] - part.begin[0];
  volume.ascans = part.end[1] - part.begin[1];
  volume.bscans = part.end[2] - part.begin[2];
  volume.voxels.resize(part.voxels());
  volume.file_size = sizes_;
  volume.spacing = spacing();
  const std::array<std::size_t, 3> steps{1, volume.depth, volume.depth * volume.ascans};
  const unsigned column = number_of(data_.axes[0]), row = number_of(data_.axes[1]),
                 frame = number_of(data_.axes[2]);
  read_frames(part.begin[frame], part.end[frame], progress, [&](std::size_t number, const Raster& raster) {
    const Raster inside =
        cut_out(raster, part.begin[column], part.end[column], part.begin[row], part.end[row]);
    place(inside, &volume.voxels[(number - part.begin[frame]) * steps[frame]], steps[column], steps[row]);
  });
  return volume;
}

VolumeData VolumeFile::read_finite(const VolumePart& part, bool decibels, const ProgressFunction& progress) {
  VolumeData volume = read(part, progress);
  if (decibels) to_decibels(volume.voxels);
  if (all_finite(volume.voxels)) return volume;
  const ValueRange& bounds = finite_bounds(decibels, progress);
  if (bounds != no_range) replace_non_finite(volume.voxels, bounds);
  return volume;
}

const ValueRange& VolumeFile::finite_bounds(bool decibels, const ProgressFunction& progress) {
  std::optional<ValueRange>& known = bounds_[decibels ? 1 : 0];
  if (known) return *known;
  ValueRange bounds = no_range;
  std::vector<float> logarithms;
  read_frames(0, data_.frames->frame_count(), progress, [&](std::size_t, const Raster& raster) {
    if (!decibels) {
      widen(bounds, raster.samples);
      return;
    }
    logarithms = raster.samples;
    to_decibels(logarithms);
    widen(bounds, logarithms);
  });
  return known.emplace(bounds);
}

}  // namespace oct::app
