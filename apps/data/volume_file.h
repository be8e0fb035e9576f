// The file of a volume while it is open, for what needs no more of it than a part.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <optional>

#include "data/data_file.h"
#include "data/file_errors.h"
#include "data/progress_function.h"
#include "data/samples.h"
#include "data/volume.h"

namespace oct::app {

// The file holds one image only.
class NoVolumeError : public ReadError {
  using ReadError::ReadError;
};

class VolumeFile {
 public:
  // Reads the first frame. Throws a ReadError, a NoVolumeError among them.
  explicit VolumeFile(const DataFile& file);

  const DataFile& file() const { return file_; }
  // Of columns, rows and frames.
  const AxisOrder& axes() const { return data_.axes; }
  // Depth, A-scans, B-scans.
  const std::array<std::size_t, 3>& sizes() const { return sizes_; }
  VoxelSpacing spacing() const { return voxel_spacing(*data_.frames, data_.axes); }

  // In ascending order, with their numbers; all of them have the size of the first.
  using FrameFunction = std::function<void(std::size_t, const Raster&)>;
  void read_frames(std::size_t begin, std::size_t end, const ProgressFunction& progress,
                   const FrameFunction& take);

  // Reads the frames that have something of the part, and holds one of them at a time.
  VolumeData read(const VolumePart& part, const ProgressFunction& progress = no_progress);

  // The part as it is drawn: in decibels if they are wanted, and finite by the lowest and the highest sample of the whole volume,
  // which costs a pass through the file where the part has one that is not.
  VolumeData read_finite(const VolumePart& part, bool decibels,
                         const ProgressFunction& progress = no_progress);

 private:
  // Of all finite samples; no_range: there is none.
  const ValueRange& finite_bounds(bool decibels, const ProgressFunction& progress);

  DataFile file_;
  OpenData data_;
  std::optional<Raster> first_;  // until somebody takes it
  std::size_t columns_ = 0;
  std::size_t rows_ = 0;
  std::array<std::size_t, 3> sizes_{};
  // Of the samples and of their decibels, as far as somebody needed them.
  std::array<std::optional<ValueRange>, 2> bounds_;
};

}  // namespace oct::app
