#include "data/formats/folder_reader.h"

#include <algorithm>
#include <string_view>
#include <system_error>
#include <utility>

#include "data/file_errors.h"

namespace oct::app {
namespace {

bool is_digit(char letter) {
  return letter >= '0' && letter <= '9';
}

std::string_view take_digits(std::string_view& text) {
  const auto end = static_cast<std::size_t>(std::ranges::find_if_not(text, is_digit) - text.begin());
  const std::string_view digits = text.substr(0, end);
  text.remove_prefix(end);
  return digits.substr(std::min(digits.find_first_not_of('0'), digits.size()));
}

// Numbers in names count as such; of equal ones the names decide.
bool comes_before(const std::string& left, const std::string& right) {
  std::string_view a = left, b = right;
  while (!a.empty() && !b.empty()) {
    if (is_digit(a[0]) && is_digit(b[0])) {
      const std::string_view first = take_digits(a), second = take_digits(b);
      if (first.size() != second.size()) return first.size() < second.size();
      if (first != second) return first < second;
    } else {
      if (a[0] != b[0]) return static_cast<unsigned char>(a[0]) < static_cast<unsigned char>(b[0]);
      a.remove_prefix(1);
      b.remove_prefix(1);
    }
  }
  return a.size() != b.size() ? a.size() < b.size() : left < right;
}

bool holds_frame(const std::filesystem::path& path) {
  std::string extension = to_utf8(path.extension());
  for (char& letter : extension) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  const bool known =
      extension == ".png" || extension == ".tif" || extension == ".tiff" || extension == ".npy";
  return known && !to_utf8(path.filename()).starts_with('.');
}

std::vector<std::string> frames_in(const std::filesystem::path& folder) {
  std::error_code error;
  std::vector<std::string> names;
  for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    if (holds_frame(entry->path())) names.push_back(to_utf8(entry->path().filename()));
  }
  if (error) throw ReadError(folder, error.message());
  if (names.empty()) throw ReadError(folder, "the folder holds no .png, .tif, .tiff or .npy file");
  std::ranges::sort(names, comes_before);
  return names;
}

class FolderReader : public FrameReader {
 public:
  FolderReader(const std::filesystem::path& folder, OpenFile open)
      : folder_(folder), open_(std::move(open)), names_(frames_in(folder)) {}

  std::size_t frame_count() const override { return names_.size(); }
  FileSpacing spacing() const override { return spacing_; }

  Raster read(std::size_t frame, const ProgressFunction& progress) override {
    const std::filesystem::path path = folder_ / from_utf8(names_[frame]);
    const std::unique_ptr<FrameReader> reader = open_(path);
    if (reader->frame_count() != 1) {
      throw ReadError(path, "it holds " + std::to_string(reader->frame_count()) +
                                " frames; in a folder of B-scans each file is one");
    }
    Raster raster = upright(reader->read(0, progress), *reader);
    if (rows_ == 0) {
      rows_ = raster.rows;
      columns_ = raster.columns;
      spacing_ = reader->spacing();
      spacing_.mm[2] = 0;  // a single frame knows no distance to the next
    }
    if (raster.rows != rows_ || raster.columns != columns_) {
      throw ReadError(path, "the image is " + size_text(raster.rows, raster.columns) + ", those before it " +
                                size_text(rows_, columns_));
    }
    return raster;
  }

 private:
  // An array may lie the other way round.
  static Raster upright(Raster raster, const FrameReader& reader) {
    if (reader.picture_axes()[0] == 0) return raster;
    Raster turned{raster.columns, raster.rows, std::vector<float>(raster.samples.size())};
    place(raster, turned.samples.data(), raster.rows, 1);
    return turned;
  }

  static std::string size_text(std::size_t rows, std::size_t columns) {
    return std::to_string(rows) + " rows of " + std::to_string(columns) + " samples";
  }

  const std::filesystem::path folder_;
  const OpenFile open_;
  const std::vector<std::string> names_;
  std::size_t rows_ = 0;
  std::size_t columns_ = 0;
  FileSpacing spacing_;
};

}  // namespace

std::unique_ptr<FrameReader> open_folder(const std::filesystem::path& folder, OpenFile open) {
  return std::make_unique<FolderReader>(folder, std::move(open));
}

}  // namespace oct::app
