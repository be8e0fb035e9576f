#include "data/formats/png_writer.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <limits>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <zlib.h>

#include "data/file_errors.h"

namespace oct::app {
namespace {

using Bytes = std::vector<std::uint8_t>;

constexpr std::string_view signature("\x89PNG\r\n\x1A\n", 8);

// The format keeps the higher byte first.
std::string number(std::uint32_t value, unsigned bytes = 4) {
  std::string text;
  for (unsigned i = bytes; i-- > 0;) text += static_cast<char>(value >> (8 * i) & 0xFFU);
  return text;
}

void write_chunk(OutputFile& file, std::string_view type, std::string_view content) {
  std::string checked(type);
  checked += content;
  const auto sum =
      crc32(0, reinterpret_cast<const Bytef*>(checked.data()), static_cast<uInt>(checked.size()));
  file.write(number(static_cast<std::uint32_t>(content.size())));
  file.write(checked);
  file.write(number(static_cast<std::uint32_t>(sum)));
}

// In the one-byte characters of the older kind of text; none where it has others, or is no UTF-8.
std::optional<std::string> to_latin1(std::string_view utf8) {
  std::string text;
  for (std::size_t i = 0; i < utf8.size(); ++i) {
    const auto byte = static_cast<std::uint8_t>(utf8[i]);
    if (byte < 0x80) {
      text += utf8[i];
    } else if ((byte == 0xC2 || byte == 0xC3) && i + 1 < utf8.size()) {
      text += static_cast<char>((byte & 0x03U) << 6 | (static_cast<std::uint8_t>(utf8[++i]) & 0x3FU));
    } else {
      return std::nullopt;
    }
  }
  return text;
}

void write_text(OutputFile& file, const PngText& text) {
  const std::string key = text.key + '\0';
  if (const std::optional<std::string> plain = to_latin1(text.text)) {
    write_chunk(file, "tEXt", key + *plain);
  } else {
    // Not compressed, of no language.
    write_chunk(file, "iTXt", key + std::string(4, '\0') + text.text);
  }
}

void write_header(OutputFile& file, const PngPixels& pixels) {
  file.write(signature);
  std::string header = number(pixels.size.width) + number(pixels.size.height);
  header += static_cast<char>(pixels.sample_bits);
  header += static_cast<char>(pixels.channels == 1 ? 0 : pixels.channels == 3 ? 2 : 6);
  write_chunk(file, "IHDR", header + std::string(3, '\0'));
}

// What a row is made of differences to. Numbers are the format's.
enum class RowFilter : std::uint8_t { none, left, above, mean, paeth };

std::uint8_t paeth_of(int left, int above, int corner) {
  const int guess = left + above - corner;
  const int to_left = std::abs(guess - left);
  const int to_above = std::abs(guess - above);
  const int to_corner = std::abs(guess - corner);
  if (to_left <= to_above && to_left <= to_corner) return static_cast<std::uint8_t>(left);
  return static_cast<std::uint8_t>(to_above <= to_corner ? above : corner);
}

// pixel: bytes from a byte to the same one of the pixel before.
void filter_row(RowFilter filter, std::span<const std::uint8_t> row, std::span<const std::uint8_t> above,
                std::size_t pixel, Bytes& result) {
  result.clear();
  result.push_back(static_cast<std::uint8_t>(filter));
  for (std::size_t i = 0; i < row.size(); ++i) {
    const std::uint8_t left = i < pixel ? 0 : row[i - pixel];
    const std::uint8_t corner = i < pixel ? 0 : above[i - pixel];
    std::uint8_t expected = 0;
    if (filter == RowFilter::left) expected = left;
    if (filter == RowFilter::above) expected = above[i];
    if (filter == RowFilter::mean) expected = static_cast<std::uint8_t>((left + above[i]) / 2);
    if (filter == RowFilter::paeth) expected = paeth_of(left, above[i], corner);
    result.push_back(static_cast<std::uint8_t>(row[i] - expected));
  }
}

// Small differences compress well.
std::uint64_t size_of_differences(const Bytes& filtered) {
  std::uint64_t sum = 0;
  for (std::size_t i = 1; i < filtered.size(); ++i)
    sum += static_cast<unsigned>(std::abs(static_cast<std::int8_t>(filtered[i])));
  return sum;
}

// Compresses what is added and writes it in chunks.
class Compressor {
 public:
  // sequence: of an animation, counts its chunks; null for those of a picture.
  Compressor(OutputFile& file, std::uint32_t* sequence) : file_(file), sequence_(sequence) {
    if (deflateInit(&stream_, Z_DEFAULT_COMPRESSION) != Z_OK) throw std::bad_alloc();
  }
  ~Compressor() { deflateEnd(&stream_); }
  Compressor(const Compressor&) = delete;
  Compressor& operator=(const Compressor&) = delete;

  void add(std::span<std::uint8_t> bytes, bool last) {
    stream_.next_in = bytes.data();
    stream_.avail_in = static_cast<uInt>(bytes.size());
    do {
      stream_.next_out = buffer_.data() + used_;
      stream_.avail_out = static_cast<uInt>(buffer_.size() - used_);
      deflate(&stream_, last ? Z_FINISH : Z_NO_FLUSH);
      const bool full = stream_.avail_out == 0;
      used_ = buffer_.size() - stream_.avail_out;
      if (full || last) write();
      if (!full) break;
    } while (true);
  }

 private:
  void write() {
    if (used_ == 0) return;
    const std::string_view content(reinterpret_cast<const char*>(buffer_.data()), used_);
    if (sequence_) {
      write_chunk(file_, "fdAT", number((*sequence_)++) + std::string(content));
    } else {
      write_chunk(file_, "IDAT", content);
    }
    used_ = 0;
  }

  OutputFile& file_;
  std::uint32_t* const sequence_;
  z_stream stream_{};
  std::size_t used_ = 0;
  Bytes buffer_ = Bytes(std::size_t{1} << 16);
};

void write_rows(OutputFile& file, const PngPixels& pixels, std::uint32_t* sequence) {
  const std::size_t pixel = std::size_t{pixels.channels} * pixels.sample_bits / 8;
  const std::size_t length = pixel * pixels.size.width;
  Compressor compressor(file, sequence);
  const Bytes nothing(length);
  std::span<const std::uint8_t> above = nothing;
  Bytes candidate, best;
  for (std::size_t y = 0; y < pixels.size.height; ++y) {
    const std::span<const std::uint8_t> row = pixels.bytes.subspan(y * length, length);
    std::uint64_t least = std::numeric_limits<std::uint64_t>::max();
    for (const RowFilter filter :
         {RowFilter::none, RowFilter::left, RowFilter::above, RowFilter::mean, RowFilter::paeth}) {
      filter_row(filter, row, above, pixel, candidate);
      const std::uint64_t size = size_of_differences(candidate);
      if (size >= least) continue;
      least = size;
      candidate.swap(best);
    }
    compressor.add(best, y + 1 == pixels.size.height);
    above = row;
  }
}

PngPixels pixels_of(const Picture& picture) {
  return {picture.size, picture.channels, 8, picture.pixels};
}

}  // namespace

void write_png(const std::filesystem::path& path, const PngPixels& pixels, const PngTexts& texts) {
  OutputFile file(path);
  write_header(file, pixels);
  for (const PngText& text : texts) write_text(file, text);
  write_rows(file, pixels, nullptr);
  write_chunk(file, "IEND", {});
  file.commit();
}

void write_png(const std::filesystem::path& path, const Picture& picture, const PngTexts& texts) {
  write_png(path, pixels_of(picture), texts);
}

AnimatedPng::AnimatedPng(std::filesystem::path path, unsigned count, unsigned frames_per_second,
                         PngTexts texts)
    : file_(std::move(path)),
      count_(count),
      frames_per_second_(frames_per_second),
      texts_(std::move(texts)) {}

void AnimatedPng::add(const Picture& picture) {
  const PngPixels pixels = pixels_of(picture);
  const bool first = !std::exchange(started_, true);
  if (first) {
    write_header(file_, pixels);
    for (const PngText& text : texts_) write_text(file_, text);
    write_chunk(file_, "acTL", number(count_) + number(0));  // again and again
  }
  std::string control = number(sequence_++) + number(picture.size.width) + number(picture.size.height);
  control += number(0) + number(0);                         // at the upper left corner
  control += number(1, 2) + number(frames_per_second_, 2);  // seconds, as a fraction
  control += std::string(2, '\0');                          // stays, and takes the place of the one before
  write_chunk(file_, "fcTL", control);
  write_rows(file_, pixels, first ? nullptr : &sequence_);
}

void AnimatedPng::finish() {
  write_chunk(file_, "IEND", {});
  file_.commit();
}

}  // namespace oct::app
