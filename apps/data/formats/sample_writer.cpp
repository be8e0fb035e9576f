#include "data/formats/sample_writer.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string>
#include <vector>

#include "data/file_errors.h"
#include "data/formats/npy_writer.h"
#include "data/formats/output_file.h"

namespace oct::app {
namespace {

constexpr double highest = 65535;

// Rows from the top.
std::vector<std::uint16_t> integers_of(const Image& image, const ValueRange& range) {
  std::vector<std::uint16_t> result(image.samples.size());
  for (std::size_t x = 0; x < image.ascans; ++x) {
    for (std::size_t z = 0; z < image.depth; ++z) {
      const double place = (image.samples[x * image.depth + z] - range.lower) / (range.upper - range.lower);
      const double value = std::isnan(place) ? 0 : std::clamp(place, 0.0, 1.0);
      result[z * image.ascans + x] = static_cast<std::uint16_t>(std::lround(value * highest));
    }
  }
  return result;
}

std::string text_of(double number) {
  std::array<char, 32> text{};
  return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

// A TIFF file of one strip, the lower byte first: header, samples, tags, and what does not fit into tags.
class TiffBytes {
 public:
  TiffBytes(std::uint32_t columns, std::uint32_t rows) : columns_(columns), rows_(rows) {}

  void add_short(std::uint16_t tag, std::uint32_t value) { add_tag(tag, 3, 1, value); }
  void add_long(std::uint16_t tag, std::uint32_t value) { add_tag(tag, 4, 1, value); }

  void add_text(std::uint16_t tag, const std::string& text) {
    add_tag(tag, 2, static_cast<std::uint32_t>(text.size() + 1), further());
    further_ += text + std::string(2 - text.size() % 2, '\0');  // offsets are even
  }

  void add_fraction(std::uint16_t tag, double value) {
    add_tag(tag, 5, 1, further());
    std::uint32_t divisor = 1;
    while (divisor < 1U << 20 && value * divisor * 2 < 1U << 31) divisor *= 2;
    append(further_, static_cast<std::uint32_t>(std::llround(value * divisor)), 4);
    append(further_, divisor, 4);
  }

  void write(OutputFile& file, const std::vector<std::uint16_t>& samples) const {
    std::string header("II*\0", 4);
    append(header, tags_begin(), 4);
    file.write(header);
    std::string line;
    for (std::size_t row = 0; row < rows_; ++row) {
      line.clear();
      for (std::size_t x = 0; x < columns_; ++x) append(line, samples[row * columns_ + x], 2);
      file.write(line);
    }
    std::string count;
    append(count, tag_count, 2);
    file.write(count + tags_ + std::string(4, '\0') + further_);
  }

  std::uint32_t sample_bytes() const { return columns_ * rows_ * 2; }

  static constexpr std::uint32_t tag_count = 14;
  static constexpr std::uint32_t samples_begin = 8;

 private:
  static void append(std::string& bytes, std::uint32_t value, unsigned count) {
    for (unsigned i = 0; i < count; ++i) bytes += static_cast<char>(value >> (8 * i) & 0xFFU);
  }

  std::uint32_t tags_begin() const { return samples_begin + sample_bytes(); }

  // Where the next thing goes that fits into no tag.
  std::uint32_t further() const {
    return tags_begin() + 2 + 12 * tag_count + 4 + static_cast<std::uint32_t>(further_.size());
  }

  void add_tag(std::uint16_t tag, unsigned type, std::uint32_t count, std::uint32_t value) {
    append(tags_, tag, 2);
    append(tags_, type, 2);
    append(tags_, count, 4);
    append(tags_, value, 4);
  }

  const std::uint32_t columns_;
  const std::uint32_t rows_;
  std::string tags_;
  std::string further_;
};

// The spacing stands where programs of microscopists look for it, with the line on which integers become values.
std::string description_of(const Image& image, const ValueRange& range) {
  std::string text = "ImageJ=1.11a\nimages=1\n";
  if (image.spacing.mm[0] > 0 && image.spacing.mm[1] > 0) text += "unit=mm\n";
  return text + "cf=0\nc0=" + text_of(range.lower) +
         "\nc1=" + text_of((range.upper - range.lower) / highest) + "\n";
}

void write_tiff(const std::filesystem::path& path, const Image& image, const ValueRange& range) {
  if (image.samples.size() > std::size_t{1} << 30) throw WriteError(path, "the image is too large");
  const auto columns = static_cast<std::uint32_t>(image.ascans),
             rows = static_cast<std::uint32_t>(image.depth);
  const auto per_mm = [](double mm) { return mm > 0 ? 1 / mm : 1.0; };
  TiffBytes tiff(columns, rows);
  tiff.add_long(256, columns);
  tiff.add_long(257, rows);
  tiff.add_short(258, 16);  // bits
  tiff.add_short(259, 1);   // not compressed
  tiff.add_short(262, 1);   // 0 is black
  tiff.add_text(270, description_of(image, range));
  tiff.add_long(273, TiffBytes::samples_begin);
  tiff.add_short(277, 1);  // sample per pixel
  tiff.add_long(278, rows);
  tiff.add_long(279, tiff.sample_bytes());
  tiff.add_fraction(282, per_mm(image.spacing.mm[1]));
  tiff.add_fraction(283, per_mm(image.spacing.mm[0]));
  tiff.add_short(296, 1);  // the unit stands in the description
  tiff.add_short(339, 1);  // unsigned
  OutputFile file(path);
  tiff.write(file, integers_of(image, range));
  file.commit();
}

void write_gray_png(const std::filesystem::path& path, const Image& image, const ValueRange& range,
                    const PngTexts& texts) {
  std::vector<std::uint8_t> bytes;
  for (const std::uint16_t value : integers_of(image, range)) {
    bytes.push_back(static_cast<std::uint8_t>(value >> 8));
    bytes.push_back(static_cast<std::uint8_t>(value));
  }
  const PictureSize size{static_cast<unsigned>(image.ascans), static_cast<unsigned>(image.depth)};
  write_png(path, {size, 1, 16, bytes}, texts);
}

}  // namespace

bool is_value_file(const std::filesystem::path& path) {
  const std::filesystem::path kind = path.extension();
  return kind == ".tif" || kind == ".tiff" || kind == ".npy";
}

void write_values(const std::filesystem::path& path, const Image& image, const ValueRange& range,
                  const PngTexts& texts) {
  if (path.extension() == ".npy") {
    write_npy(path, {image.depth, image.ascans, 1, image.samples, {}});
  } else if (path.extension() == ".png") {
    write_gray_png(path, image, range, texts);
  } else {
    write_tiff(path, image, range);
  }
}

}  // namespace oct::app
