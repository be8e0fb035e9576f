#include "data/formats/raster.h"

#include <algorithm>
#include <string>
#include <utility>

#include "data/file_errors.h"

namespace oct::app {
namespace {

constexpr std::uint64_t kMaxSide = 65536;
constexpr std::uint64_t kMaxSamples = std::uint64_t{1} << 28;  // 1 GiB of floats

// Both sides of a block stay in the first-level cache, so that neither the reads nor the writes miss on each
// sample.
constexpr std::size_t kBlock = 32;

std::vector<float> transposed(const std::vector<float>& source, std::size_t rows, std::size_t columns) {
  std::vector<float> result(source.size());
  for (std::size_t rowBlock = 0; rowBlock < rows; rowBlock += kBlock) {
    for (std::size_t columnBlock = 0; columnBlock < columns; columnBlock += kBlock) {
      const std::size_t rowEnd = std::min(rows, rowBlock + kBlock);
      const std::size_t columnEnd = std::min(columns, columnBlock + kBlock);
      for (std::size_t row = rowBlock; row < rowEnd; ++row) {
        for (std::size_t column = columnBlock; column < columnEnd; ++column) {
          result[column * rows + row] = source[row * columns + column];
        }
      }
    }
  }
  return result;
}

}  // namespace

Image toImage(Raster raster, bool rowsAreAscans) {
  if (rowsAreAscans) return {raster.columns, raster.rows, std::move(raster.samples)};
  return {raster.rows, raster.columns, transposed(raster.samples, raster.rows, raster.columns)};
}

void checkRasterSize(const std::filesystem::path& file, std::uint64_t rows, std::uint64_t columns) {
  const std::string size = std::to_string(rows) + " x " + std::to_string(columns);
  if (rows == 0 || columns == 0) throw ReadError(file, "the image is empty (" + size + ")");
  if (rows > kMaxSide || columns > kMaxSide || rows * columns > kMaxSamples) {
    throw ReadError(file, "the image is too large (" + size + " samples; at most " +
                              std::to_string(kMaxSide) + " a side and " + std::to_string(kMaxSamples) +
                              " in all)");
  }
}

std::size_t chooseFrame(const std::filesystem::path& file, std::uint64_t frameCount,
                        const FrameChoice& choice) {
  if (frameCount == 1 && choice.singleFits) return 0;
  if (!choice.number) return static_cast<std::size_t>(frameCount / 2);
  if (*choice.number < frameCount) return *choice.number;
  const std::string count =
      frameCount == 1 ? "one frame (number 0)"
                      : std::to_string(frameCount) + " frames (0 to " + std::to_string(frameCount - 1) + ")";
  throw ReadError(file, "there is no frame " + std::to_string(*choice.number) + "; the file holds " + count);
}

}  // namespace oct::app
