#include "data/arrays/array_reader.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "data/file_errors.h"

namespace oct::app {
namespace {

constexpr std::size_t samples_at_a_time = std::size_t{1} << 16;

class ArrayReader : public FrameReader {
 public:
  ArrayReader(std::unique_ptr<ByteStream> stream, const ArrayDescription& description)
      : stream_(std::move(stream)), description_(description) {}

  std::size_t frame_count() const override { return static_cast<std::size_t>(description_.sizes[2]); }
  FileSpacing spacing() const override { return description_.spacing; }
  std::array<std::uint8_t, 3> picture_axes() const override { return description_.picture_axes; }

  Raster read(std::size_t frame, const ProgressFunction& progress) override {
    Raster raster;
    raster.columns = static_cast<std::size_t>(description_.sizes[0]);
    raster.rows = static_cast<std::size_t>(description_.sizes[1]);
    raster.samples.resize(raster.rows * raster.columns);
    const std::size_t sample_bytes = bytes_of(description_.format.type);
    stream_->seek(description_.skip + std::uint64_t{frame} * raster.samples.size() * sample_bytes);
    bytes_.resize(std::min(raster.samples.size(), samples_at_a_time) * sample_bytes);
    for (std::size_t done = 0; done < raster.samples.size(); done += samples_at_a_time) {
      progress(done, raster.samples.size());
      const std::size_t count = std::min(raster.samples.size() - done, samples_at_a_time);
      stream_->read(bytes_.data(), count * sample_bytes);
      convert_samples(description_.format, bytes_.data(), count, &raster.samples[done]);
    }
    if (description_.slope != 1 || description_.intercept != 0) scale(raster.samples);
    return raster;
  }

 private:
  void scale(std::vector<float>& samples) const {
    for (float& sample : samples)
      sample = static_cast<float>(description_.slope * sample + description_.intercept);
  }

  const std::unique_ptr<ByteStream> stream_;
  const ArrayDescription description_;
  std::vector<char> bytes_;
};

// Of the samples, or nothing where it does not fit into 64 bits.
std::uint64_t data_bytes(const ArrayDescription& description) {
  // One frame is at most 2^28 samples, so only the multiplication by the frames could overflow.
  const std::uint64_t frame = description.sizes[0] * description.sizes[1] * bytes_of(description.format.type);
  return description.sizes[2] > UINT64_MAX / frame ? UINT64_MAX : description.sizes[2] * frame;
}

void check_sizes(const std::filesystem::path& file, const ArrayDescription& description) {
  check_raster_size(file, description.sizes[1], description.sizes[0]);
  if (description.sizes[2] == 0) throw ReadError(file, "the array is empty");
}

ReadError truncated(const std::filesystem::path& file, std::uint64_t available,
                    const ArrayDescription& description) {
  const auto [columns, rows, frames] = description.sizes;
  return {file, "the file is truncated: " + std::to_string(available) + " data bytes are too few for the " +
                    std::to_string(frames) + " x " + std::to_string(rows) + " x " + std::to_string(columns) +
                    " samples of type " + std::string(name_of(description.format.type)) + " that " +
                    description.origin + " describes"};
}

}  // namespace

std::unique_ptr<FrameReader> open_array(std::unique_ptr<ByteStream> stream,
                                        const ArrayDescription& description) {
  check_sizes(stream->path(), description);
  const std::uint64_t most = stream->most_bytes();
  if (description.skip > most || data_bytes(description) > most - description.skip) {
    throw truncated(stream->path(), most - std::min(most, description.skip), description);
  }
  return std::make_unique<ArrayReader>(std::move(stream), description);
}

std::unique_ptr<FrameReader> open_array(std::shared_ptr<InputFile> header_file,
                                        ArrayDescription description) {
  check_sizes(header_file->path(), description);
  std::shared_ptr<InputFile> file = std::move(header_file);
  if (!description.data_file.empty()) {
    const std::filesystem::path path = file->path().parent_path() / description.data_file;
    file = std::make_shared<InputFile>(path);
  }
  if (description.at_the_end) {
    const std::uint64_t wanted = data_bytes(description);
    if (wanted > file->size()) throw truncated(file->path(), file->size(), description);
    description.data_begin = file->size() - wanted;
    description.skip = 0;
  }
  return open_array(open_bytes(std::move(file), description.compression, description.data_begin),
                    description);
}

}  // namespace oct::app
