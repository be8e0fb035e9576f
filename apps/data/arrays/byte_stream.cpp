#include "data/arrays/byte_stream.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include <zlib.h>

#include "data/file_errors.h"

namespace oct::app {
namespace {

class FileBytes : public ByteStream {
 public:
  FileBytes(std::shared_ptr<InputFile> file, std::uint64_t begin, std::uint64_t end)
      : file_(std::move(file)), begin_(begin), size_(end - begin) {}

  void seek(std::uint64_t position) override {
    position_ = std::min(position, size_);
    file_->seek(begin_ + position_);
  }

  void read(void* destination, std::size_t bytes) override {
    if (bytes > size_ - position_) throw ReadError(path(), "the file is truncated");
    file_->read(destination, bytes);
    position_ += bytes;
  }

  std::uint64_t most_bytes() const override { return size_; }
  const std::filesystem::path& path() const override { return file_->path(); }

 private:
  const std::shared_ptr<InputFile> file_;
  const std::uint64_t begin_;
  const std::uint64_t size_;
  std::uint64_t position_ = 0;
};

class InflatedBytes : public ByteStream {
 public:
  InflatedBytes(std::shared_ptr<InputFile> file, std::uint64_t begin, std::uint64_t end, int window_bits)
      : file_(std::move(file)), begin_(begin), end_(end), window_bits_(window_bits), input_(buffer_size) {
    if (inflateInit2(&stream_, window_bits_) != Z_OK) throw std::bad_alloc();
    restart();
  }
  ~InflatedBytes() override { inflateEnd(&stream_); }

  void seek(std::uint64_t position) override {
    if (position < position_) restart();
    std::vector<char> skipped(
        static_cast<std::size_t>(std::min<std::uint64_t>(position - position_, buffer_size)));
    while (position_ < position)
      read(skipped.data(),
           static_cast<std::size_t>(std::min<std::uint64_t>(position - position_, skipped.size())));
  }

  void read(void* destination, std::size_t bytes) override {
    position_ += bytes;
    auto* next = static_cast<Bytef*>(destination);
    while (bytes > 0) {
      const std::size_t piece = std::min(bytes, buffer_size);
      stream_.next_out = next;
      stream_.avail_out = static_cast<uInt>(piece);
      inflate_some();
      const std::size_t written = piece - stream_.avail_out;
      next += written;
      bytes -= written;
    }
  }

  // Deflate makes at most 1032 bytes of one.
  std::uint64_t most_bytes() const override { return (end_ - begin_) * 1032; }
  const std::filesystem::path& path() const override { return file_->path(); }

 private:
  static constexpr std::size_t buffer_size = std::size_t{1} << 18;

  void restart() {
    inflateReset(&stream_);
    stream_.avail_in = 0;
    file_position_ = begin_;
    position_ = 0;
  }

  // Consumes input or makes output, or throws.
  void inflate_some() {
    if (stream_.avail_in == 0) {
      const auto wanted =
          static_cast<std::size_t>(std::min<std::uint64_t>(end_ - file_position_, buffer_size));
      if (wanted == 0) throw ReadError(path(), "the compressed data are truncated");
      file_->seek(file_position_);
      file_->read(input_.data(), wanted);
      file_position_ += wanted;
      stream_.next_in = input_.data();
      stream_.avail_in = static_cast<uInt>(wanted);
    }
    const int result = inflate(&stream_, Z_NO_FLUSH);
    if (result == Z_STREAM_END && window_bits_ > 0 && (stream_.avail_in > 0 || file_position_ < end_)) {
      inflateReset(&stream_);  // parallel compressors write one gzip member after another
    } else if (result == Z_STREAM_END && stream_.avail_out > 0) {
      throw ReadError(path(), "the compressed data are truncated");
    } else if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
      throw ReadError(path(), std::string("the compressed data are damaged: ") +
                                  (stream_.msg ? stream_.msg : zError(result)));
    }
  }

  const std::shared_ptr<InputFile> file_;
  const std::uint64_t begin_;
  const std::uint64_t end_;
  const int window_bits_;
  std::vector<Bytef> input_;
  z_stream stream_{};
  std::uint64_t file_position_ = 0;
  std::uint64_t position_ = 0;
};

}  // namespace

std::unique_ptr<ByteStream> open_bytes(std::shared_ptr<InputFile> file, Compression compression,
                                       std::uint64_t begin, std::uint64_t end) {
  end = std::min(end, file->size());
  begin = std::min(begin, end);
  if (compression == Compression::none) return std::make_unique<FileBytes>(std::move(file), begin, end);
  constexpr int either_header = 15 + 32, no_header = -15;
  return std::make_unique<InflatedBytes>(std::move(file), begin, end,
                                         compression == Compression::deflate ? no_header : either_header);
}

}  // namespace oct::app
