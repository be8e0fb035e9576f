#include "data/arrays/npy_reader.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "data/arrays/array_reader.h"
#include "data/arrays/npy_header.h"
#include "data/file_errors.h"

namespace oct::app {
namespace {

// A byte order and a name: "<f4".
SampleFormat sample_format(const std::filesystem::path& file, const std::string& type) {
  const std::string name = type.substr(std::min<std::size_t>(type.size(), 1));
  if (name == "b1") return {SampleType::uint8, false};
  const std::optional<SampleType> known = find_sample_type(name);
  const char order = type.empty() ? '\0' : type[0];
  if (known && (order == '<' || order == '>' || order == '=' || (order == '|' && bytes_of(*known) == 1))) {
    return {*known, order == '>'};
  }
  const std::string reason = "samples of type '" + type + "' are not supported";
  if (name.starts_with('c')) throw ReadError(file, reason + " (complex); save the magnitude");
  throw ReadError(file, reason + "; save integers or floats of at most 64 bits");
}

std::string shape_text(const std::vector<std::uint64_t>& shape) {
  std::string text = "(";
  for (std::size_t i = 0; i < shape.size(); ++i) text += (i ? ", " : "") + std::to_string(shape[i]);
  return text + (shape.size() == 1 ? ",)" : ")");
}

}  // namespace

std::unique_ptr<FrameReader> open_npy(std::unique_ptr<ByteStream> stream) {
  const NpyHeader header = read_npy_header(*stream);
  ArrayDescription description;
  description.format = sample_format(stream->path(), header.type);
  description.skip = header.data_offset;
  const std::vector<std::uint64_t>& shape = header.shape;
  if (shape.size() != 2 && shape.size() != 3) {
    throw ReadError(stream->path(),
                    "the array has the shape " + shape_text(shape) +
                        "; an image has two axes (depth, A-scan), a volume three (frame, depth, A-scan)");
  }
  // The last axis is the fastest, or in Fortran order the first.
  std::vector<std::uint8_t> axes{0, 1};
  if (shape.size() == 3) axes.push_back(2);
  if (header.fortran_order) std::ranges::reverse(axes);
  for (std::size_t i = 0; i < axes.size(); ++i) {
    description.picture_axes[i] = axes[i];
    description.sizes[i] = shape[shape.size() - 1 - axes[i]];
  }
  description.origin = "the shape " + shape_text(shape);
  return open_array(std::move(stream), description);
}

}  // namespace oct::app
