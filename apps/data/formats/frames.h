// What the readers of files deliver before anyone knows which axis is depth.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "data/axes.h"
#include "data/file_errors.h"
#include "data/progress_function.h"
#include "data/voxel_spacing.h"

namespace oct::app {

// Samples as they lie in a file: row by row.
struct Raster {
  std::size_t rows = 0;
  std::size_t columns = 0;
  std::vector<float> samples;
};

// Distances in a file; 0: not known.
struct FileSpacing {
  std::array<double, 3> mm{};  // between columns, rows, frames
  std::string source;
};

// The frames of a file that is open.
class FrameReader {
 public:
  FrameReader() = default;
  virtual ~FrameReader() = default;
  FrameReader(const FrameReader&) = delete;
  FrameReader& operator=(const FrameReader&) = delete;

  virtual std::size_t frame_count() const = 0;
  // Cheapest in ascending order.
  virtual Raster read(std::size_t frame, const ProgressFunction& progress) = 0;

  // Valid after a frame was read.
  virtual FileSpacing spacing() const { return {}; }

  // Which axes of pictures (0 columns, 1 rows, 2 frames) the columns, rows and frames are: an array may lie in
  // memory the other way round than its axes are told.
  virtual std::array<std::uint8_t, 3> picture_axes() const { return {0, 1, 2}; }
};

// What lies along columns, rows and frames of this reader when a user gives this order of a picture's axes.
AxisOrder file_order(const FrameReader& reader, const AxisOrder& order);

VoxelSpacing voxel_spacing(const FrameReader& reader, const AxisOrder& file_order);

// Refuses empty rasters and such as no OpenGL driver could show, before anything is allocated.
void check_raster_size(const std::filesystem::path& file, std::uint64_t rows, std::uint64_t columns);

ReadError other_size(const std::filesystem::path& file, std::size_t frame);

// Writes the samples so that neighbours in a row lie column_step apart and rows row_step.
void place(const Raster& raster, float* destination, std::size_t column_step, std::size_t row_step);

// Which frame of a file to take.
struct FrameChoice {
  std::optional<std::size_t> number;  // counted from 0; none: the middle one
  bool single_fits = false;           // a file of one frame gives that one, whatever the number
};

// The number of the chosen frame.
std::size_t choose_frame(const std::filesystem::path& file, std::uint64_t frame_count,
                         const FrameChoice& choice);

}  // namespace oct::app
