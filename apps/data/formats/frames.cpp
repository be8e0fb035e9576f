#include "data/formats/frames.h"

#include <algorithm>

namespace oct::app {
namespace {

constexpr std::uint64_t max_side = 65536;
constexpr std::uint64_t max_samples = std::uint64_t{1} << 28;  // 1 GiB of floats

// Both sides of a block stay in the first-level cache, so that neither the reads nor
// the writes miss on each sample.
constexpr std::size_t block_size = 32;

}  // namespace

AxisOrder file_order(const FrameReader& reader, const AxisOrder& order) {
  const std::array<std::uint8_t, 3> axes = reader.picture_axes();
  return {order[axes[0]], order[axes[1]], order[axes[2]]};
}

VoxelSpacing voxel_spacing(const FrameReader& reader, const AxisOrder& file_order) {
  const FileSpacing in_file = reader.spacing();
  VoxelSpacing spacing{{}, in_file.source};
  for (std::size_t i = 0; i < 3; ++i) spacing.mm[number_of(file_order[i])] = in_file.mm[i];
  return spacing;
}

void place(const Raster& raster, float* destination, std::size_t column_step, std::size_t row_step) {
  const float* const source = raster.samples.data();
  if (column_step == 1) {
    for (std::size_t row = 0; row < raster.rows; ++row)
      std::copy_n(source + row * raster.columns, raster.columns, destination + row * row_step);
    return;
  }
  for (std::size_t row_block = 0; row_block < raster.rows; row_block += block_size) {
    for (std::size_t column_block = 0; column_block < raster.columns; column_block += block_size) {
      const std::size_t row_end = std::min(raster.rows, row_block + block_size);
      const std::size_t column_end = std::min(raster.columns, column_block + block_size);
      for (std::size_t column = column_block; column < column_end; ++column) {
        for (std::size_t row = row_block; row < row_end; ++row) {
          destination[column * column_step + row * row_step] = source[row * raster.columns + column];
        }
      }
    }
  }
}

void check_raster_size(const std::filesystem::path& file, std::uint64_t rows, std::uint64_t columns) {
  const std::string size = std::to_string(rows) + " x " + std::to_string(columns);
  if (rows == 0 || columns == 0) throw ReadError(file, "the image is empty (" + size + ")");
  if (rows > max_side || columns > max_side || rows * columns > max_samples) {
    throw ReadError(file, "the image is too large (" + size + " samples; at most " +
                              std::to_string(max_side) + " a side and " + std::to_string(max_samples) +
                              " in all)");
  }
}

ReadError other_size(const std::filesystem::path& file, std::size_t frame) {
  return {file, "frame " + std::to_string(frame) + " has another size than the first"};
}

std::size_t choose_frame(const std::filesystem::path& file, std::uint64_t frame_count,
                         const FrameChoice& choice) {
  if (frame_count == 1 && choice.single_fits) return 0;
  if (!choice.number) return static_cast<std::size_t>(frame_count / 2);
  if (*choice.number < frame_count) return *choice.number;
  const std::string count = frame_count == 1 ? "one frame (number 0)"
                                             : std::to_string(frame_count) + " frames (0 to " +
                                                   std::to_string(frame_count - 1) + ")";
  throw ReadError(file, "there is no frame " + std::to_string(*choice.number) + "; the file holds " + count);
}

}  // namespace oct::app
