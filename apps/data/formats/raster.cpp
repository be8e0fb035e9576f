#include "data/formats/raster.h"

#include <algorithm>
#include <string>
#include <utility>

#include "data/file_errors.h"

namespace oct::app {
namespace {

constexpr std::uint64_t max_side = 65536;
constexpr std::uint64_t max_samples = std::uint64_t{1} << 28;  // 1 GiB of floats

// Both sides of a block stay in the first-level cache, so that neither the reads nor
// the writes miss on each sample.
constexpr std::size_t block_size = 32;

std::vector<float> transposed(const std::vector<float>& source, std::size_t rows, std::size_t columns) {
  std::vector<float> result(source.size());
  for (std::size_t row_block = 0; row_block < rows; row_block += block_size) {
    for (std::size_t column_block = 0; column_block < columns; column_block += block_size) {
      const std::size_t row_end = std::min(rows, row_block + block_size);
      const std::size_t column_end = std::min(columns, column_block + block_size);
      for (std::size_t row = row_block; row < row_end; ++row) {
        for (std::size_t column = column_block; column < column_end; ++column) {
          result[column * rows + row] = source[row * columns + column];
        }
      }
    }
  }
  return result;
}

}  // namespace

Image to_image(Raster raster, bool rows_are_ascans) {
  if (rows_are_ascans) return {raster.columns, raster.rows, std::move(raster.samples)};
  return {raster.rows, raster.columns, transposed(raster.samples, raster.rows, raster.columns)};
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
