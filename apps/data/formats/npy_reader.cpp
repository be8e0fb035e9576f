#include "data/formats/npy_reader.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <string>
#include <utility>

#include "data/file_errors.h"
#include "data/formats/npy_header.h"

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

constexpr SampleType sample_types[] = {
    {"<f4", 4, convert<float>},        {"<f8", 8, convert<double>},        {"|u1", 1, convert<std::uint8_t>},
    {"|b1", 1, convert<std::uint8_t>}, {"<u2", 2, convert<std::uint16_t>},
};

const SampleType& find_sample_type(const std::filesystem::path& file, const std::string& name) {
  for (const SampleType& type : sample_types) {
    if (name == type.name) return type;
  }
  const std::string reason = "samples of type '" + name + "' are not supported";
  if (name.starts_with('>')) throw ReadError(file, reason + " (big-endian); save little-endian");
  if (name.substr(0, 2) == "<c") throw ReadError(file, reason + " (complex); save the magnitude");
  throw ReadError(file, reason + "; save float32, float64, uint8, uint16 or bool");
}

std::string shape_text(const std::vector<std::uint64_t>& shape) {
  std::string text = "(";
  for (std::size_t i = 0; i < shape.size(); ++i) text += (i ? ", " : "") + std::to_string(shape[i]);
  return text + (shape.size() == 1 ? ",)" : ")");
}

struct ArrayLayout {
  std::uint64_t frames = 1;
  std::uint64_t rows = 0;
  std::uint64_t columns = 0;
};

ArrayLayout layout_of(const std::filesystem::path& file, const NpyHeader& header) {
  const std::vector<std::uint64_t>& shape = header.shape;
  if (shape.size() != 2 && shape.size() != 3) {
    throw ReadError(file,
                    "the array has the shape " + shape_text(shape) +
                        "; an image has two axes (depth, A-scan), a volume three (frame, depth, A-scan)");
  }
  const std::size_t first = shape.size() - 2;
  const ArrayLayout layout{first == 1 ? shape[0] : 1, shape[first], shape[first + 1]};
  if (layout.frames == 0) throw ReadError(file, "the array is empty, its shape is " + shape_text(shape));
  check_raster_size(file, layout.rows, layout.columns);
  return layout;
}

void check_data_size(const InputFile& file, const NpyHeader& header, const ArrayLayout& layout,
                     const SampleType& type) {
  const std::uint64_t available = file.size() - header.data_offset;
  // One frame is at most 2^28 samples, so only the multiplication by the frames
  // could overflow: divide instead.
  const std::uint64_t frame_bytes = layout.rows * layout.columns * type.bytes;
  if (layout.frames > available / frame_bytes) {
    throw ReadError(file.path(), "the file is truncated: " + std::to_string(available) +
                                     " data bytes are too few for the shape " + shape_text(header.shape) +
                                     " of '" + type.name + "'");
  }
}

struct Array {
  InputFile& file;
  NpyHeader header;
  const SampleType& type;
  ArrayLayout layout;

  Raster empty_frame(std::size_t number) const {
    Raster raster;
    raster.rows = static_cast<std::size_t>(layout.rows);
    raster.columns = static_cast<std::size_t>(layout.columns);
    raster.frame_count = static_cast<std::size_t>(layout.frames);
    raster.frame = number;
    raster.samples.resize(raster.rows * raster.columns);
    return raster;
  }
};

Array open_array(InputFile& file) {
  const NpyHeader header = read_npy_header(file);
  const SampleType& type = find_sample_type(file.path(), header.type);
  const ArrayLayout layout = layout_of(file.path(), header);
  check_data_size(file, header, layout, type);
  return {file, header, type, layout};
}

// The frame is one piece of the file.
Raster read_contiguous_frame(const Array& array, std::size_t number, const ProgressFunction& progress) {
  Raster raster = array.empty_frame(number);
  const std::size_t row_bytes = raster.columns * array.type.bytes;
  array.file.seek(array.header.data_offset + std::uint64_t{number} * raster.rows * row_bytes);
  std::vector<char> row(row_bytes);
  for (std::size_t i = 0; i < raster.rows; ++i) {
    progress(i * raster.columns, raster.samples.size());
    array.file.read(row.data(), row.size());
    array.type.convert(row.data(), raster.columns, 1, &raster.samples[i * raster.columns]);
  }
  return raster;
}

// The first axis is fastest: the samples of one frame are spread over the whole file, which is read through
// column by column.
std::vector<Raster> read_fortran_frames(const Array& array, std::size_t first, std::size_t count,
                                        const ProgressFunction& progress) {
  std::vector<Raster> rasters;
  for (std::size_t i = 0; i < count; ++i) rasters.push_back(array.empty_frame(first + i));
  const auto& [rows, columns, samples, frame, frame_count] = rasters.front();
  array.file.seek(array.header.data_offset);
  const std::size_t column_samples = rows * frame_count;
  std::vector<char> bytes(column_samples * array.type.bytes);
  std::vector<float> column(rows);
  for (std::size_t i = 0; i < columns; ++i) {
    progress(i * column_samples, columns * column_samples);
    array.file.read(bytes.data(), bytes.size());
    for (Raster& raster : rasters) {
      array.type.convert(&bytes[raster.frame * array.type.bytes], rows, frame_count, column.data());
      for (std::size_t row = 0; row < rows; ++row) raster.samples[row * columns + i] = column[row];
    }
  }
  return rasters;
}

}  // namespace

Raster read_npy(InputFile& file, const FrameChoice& choice, const ProgressFunction& progress) {
  const Array array = open_array(file);
  const std::size_t number = choose_frame(file.path(), array.layout.frames, choice);
  if (!array.header.fortran_order) return read_contiguous_frame(array, number, progress);
  return std::move(read_fortran_frames(array, number, 1, progress).front());
}

void read_npy_frames(InputFile& file, const TakeRaster& take, const ProgressFunction& progress,
                     std::size_t samples_at_a_time) {
  const Array array = open_array(file);
  const auto frames = static_cast<std::size_t>(array.layout.frames);
  if (!array.header.fortran_order) {
    for (std::size_t frame = 0; frame < frames; ++frame)
      take(read_contiguous_frame(array, frame, no_progress));
    return;
  }
  const auto frame_samples = static_cast<std::size_t>(array.layout.rows * array.layout.columns);
  const std::size_t at_a_time = std::max<std::size_t>(samples_at_a_time / frame_samples, 1);
  for (std::size_t first = 0; first < frames; first += at_a_time) {
    for (Raster& raster : read_fortran_frames(array, first, std::min(at_a_time, frames - first), progress)) {
      take(std::move(raster));
    }
  }
}

}  // namespace oct::app
