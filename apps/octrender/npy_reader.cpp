#include "npy_reader.h"

#include <bit>
#include <cstring>
#include <string>

#include "failure.h"
#include "npy_header.h"
#include "progress.h"

namespace oct::app {
namespace {

// Files are little-endian and samples are copied as they are.
static_assert(std::endian::native == std::endian::little);

template <class T>
void convert(const char* source, std::size_t count, std::size_t step, float* destination) {
  for (std::size_t i = 0; i < count; ++i) {
    T value;
    std::memcpy(&value, source + i * step * sizeof(T), sizeof(T));
    destination[i] = static_cast<float>(value);
  }
}

struct SampleType {
  const char* name;
  std::size_t bytes;
  // Converts count samples, each step samples behind the one before.
  void (*convert)(const char* source, std::size_t count, std::size_t step, float* destination);
};

constexpr SampleType kSampleTypes[] = {
    {"<f4", 4, convert<float>},        {"<f8", 8, convert<double>},        {"|u1", 1, convert<std::uint8_t>},
    {"|b1", 1, convert<std::uint8_t>}, {"<u2", 2, convert<std::uint16_t>},
};

const SampleType& findSampleType(const std::filesystem::path& file, const std::string& name) {
  for (const SampleType& type : kSampleTypes) {
    if (name == type.name) return type;
  }
  const std::string reason = "samples of type '" + name + "' are not supported";
  if (name.starts_with('>')) throw inputFailure(file, reason + " (big-endian); save little-endian");
  if (name.substr(0, 2) == "<c") throw inputFailure(file, reason + " (complex); save the magnitude");
  throw inputFailure(file, reason + "; save float32, float64, uint8, uint16 or bool");
}

std::string shapeText(const std::vector<std::uint64_t>& shape) {
  std::string text = "(";
  for (std::size_t i = 0; i < shape.size(); ++i) text += (i ? ", " : "") + std::to_string(shape[i]);
  return text + (shape.size() == 1 ? ",)" : ")");
}

struct ArrayLayout {
  std::uint64_t frames = 1;
  std::uint64_t rows = 0;
  std::uint64_t columns = 0;
};

ArrayLayout layoutOf(const std::filesystem::path& file, const NpyHeader& header) {
  const std::vector<std::uint64_t>& shape = header.shape;
  if (shape.size() != 2 && shape.size() != 3) {
    throw inputFailure(file,
                       "the array has the shape " + shapeText(shape) +
                           "; an image has two axes (depth, A-scan), a volume three (frame, depth, A-scan)");
  }
  const std::size_t first = shape.size() - 2;
  const ArrayLayout layout{first == 1 ? shape[0] : 1, shape[first], shape[first + 1]};
  if (layout.frames == 0) throw inputFailure(file, "the array is empty, its shape is " + shapeText(shape));
  checkRasterSize(file, layout.rows, layout.columns);
  return layout;
}

void checkDataSize(const InputFile& file, const NpyHeader& header, const ArrayLayout& layout,
                   const SampleType& type) {
  const std::uint64_t available = file.size() - header.dataOffset;
  // One frame is at most 2^28 samples, so only the multiplication by the frames could overflow: divide
  // instead.
  const std::uint64_t frameBytes = layout.rows * layout.columns * type.bytes;
  if (layout.frames > available / frameBytes) {
    throw inputFailure(file.path(), "the file is truncated: " + std::to_string(available) +
                                        " data bytes are too few for the shape " + shapeText(header.shape) +
                                        " of '" + type.name + "'");
  }
}

// The frame is one piece of the file.
void readContiguousFrame(InputFile& file, const NpyHeader& header, const SampleType& type, Raster& raster) {
  file.seek(header.dataOffset + std::uint64_t{raster.frame} * raster.rows * raster.columns * type.bytes);
  std::vector<char> row(raster.columns * type.bytes);
  Progress progress("reading " + toUtf8(file.path().filename()), raster.samples.size());
  for (std::size_t i = 0; i < raster.rows; ++i) {
    progress.update(i, raster.rows);
    file.read(row.data(), row.size());
    type.convert(row.data(), raster.columns, 1, &raster.samples[i * raster.columns]);
  }
}

// The first axis is fastest: the samples of one frame are spread over the whole file, which is read through
// column by column.
void readFortranFrame(InputFile& file, const NpyHeader& header, const SampleType& type, Raster& raster) {
  file.seek(header.dataOffset);
  std::vector<char> bytes(raster.rows * raster.frameCount * type.bytes);
  std::vector<float> column(raster.rows);
  Progress progress("reading " + toUtf8(file.path().filename()), raster.samples.size() * raster.frameCount);
  for (std::size_t i = 0; i < raster.columns; ++i) {
    progress.update(i, raster.columns);
    file.read(bytes.data(), bytes.size());
    type.convert(&bytes[raster.frame * type.bytes], raster.rows, raster.frameCount, column.data());
    for (std::size_t row = 0; row < raster.rows; ++row)
      raster.samples[row * raster.columns + i] = column[row];
  }
}

}  // namespace

Raster readNpy(InputFile& file, const FrameChoice& choice) {
  const NpyHeader header = readNpyHeader(file);
  const SampleType& type = findSampleType(file.path(), header.type);
  const ArrayLayout layout = layoutOf(file.path(), header);
  checkDataSize(file, header, layout, type);

  Raster raster;
  raster.rows = static_cast<std::size_t>(layout.rows);
  raster.columns = static_cast<std::size_t>(layout.columns);
  raster.frameCount = static_cast<std::size_t>(layout.frames);
  raster.frame = chooseFrame(file.path(), layout.frames, choice);
  raster.samples.resize(raster.rows * raster.columns);
  (header.fortranOrder ? readFortranFrame : readContiguousFrame)(file, header, type, raster);
  return raster;
}

}  // namespace oct::app
