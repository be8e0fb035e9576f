#include "data/colormap_reader.h"

#include <charconv>
#include <cmath>
#include <string>
#include <string_view>

#include "data/file_errors.h"
#include "data/formats/input_file.h"

namespace oct::app {
namespace {

constexpr std::size_t min_colors = 2;
constexpr std::size_t max_colors = 4096;
constexpr std::uint64_t max_file_bytes = 1 << 20;  // a table of 4096 long lines takes less

std::string_view trimmed(std::string_view text) {
  constexpr std::string_view blanks = " \t\r";
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

// The piece before the separator; the text keeps what follows.
std::string_view take_piece(std::string_view& text, char separator) {
  const std::size_t end = text.find(separator);
  const std::string_view piece = text.substr(0, end);
  text = end == std::string_view::npos ? std::string_view() : text.substr(end + 1);
  return piece;
}

bool parse_number(std::string_view text, double& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

struct Row {
  std::size_t line = 0;
  std::vector<double> numbers;
};

class ColormapFileReader {
 public:
  explicit ColormapFileReader(const std::filesystem::path& path) : path_(path) {}

  Colormap read() {
    read_rows();
    if (rows_.size() < min_colors || rows_.size() > max_colors) {
      throw ReadError(path_, "a colour map has from " + std::to_string(min_colors) + " to " +
                                 std::to_string(max_colors) + " colours, this one " +
                                 std::to_string(rows_.size()));
    }
    Colormap colors;
    for (const Row& row : rows_) colors.push_back(to_color(row));
    return colors;
  }

 private:
  [[noreturn]] void fail(std::size_t line, const std::string& reason) const {
    throw ReadError(path_, "line " + std::to_string(line) + ": " + reason);
  }

  void read_rows() {
    InputFile file(path_);
    if (file.size() > max_file_bytes) throw ReadError(path_, "too large for a colour map");
    const std::string content = file.whole();
    std::string_view rest = content;
    if (rest.starts_with("\xEF\xBB\xBF")) rest.remove_prefix(3);  // spreadsheets write a byte order mark
    bool may_be_header = true;
    for (std::size_t line = 1; !rest.empty(); ++line) {
      const std::string_view text = trimmed(take_piece(rest, '\n'));
      if (text.empty()) continue;
      if (may_be_header && is_header(text)) {
        may_be_header = false;
        continue;
      }
      may_be_header = false;
      rows_.push_back(parse_row(line, text));
    }
  }

  // A line without any number.
  static bool is_header(std::string_view text) {
    double value = 0;
    while (!text.empty()) {
      if (parse_number(trimmed(take_piece(text, ',')), value)) return false;
    }
    return true;
  }

  Row parse_row(std::size_t line, std::string_view text) {
    Row row{line, {}};
    // A comma at the end stands before one more, empty, number.
    for (bool more = true; more;) {
      more = text.find(',') != std::string_view::npos;
      const std::string_view piece = trimmed(take_piece(text, ','));
      double value = 0;
      if (!parse_number(piece, value)) fail(line, "not a number: '" + std::string(piece) + "'");
      if (!(value >= 0 && value <= 255)) fail(line, "not between 0 and 255: " + std::string(piece));
      if (value > 1 && bytes_since_ == 0) bytes_since_ = line;
      row.numbers.push_back(value);
    }
    if (row.numbers.size() != 3 && row.numbers.size() != 4) {
      fail(line, "3 or 4 numbers are needed (red, green, blue, alpha), there are " +
                     std::to_string(row.numbers.size()));
    }
    if (!rows_.empty() && row.numbers.size() != rows_.front().numbers.size()) {
      fail(line, std::to_string(row.numbers.size()) + " numbers, but " +
                     std::to_string(rows_.front().numbers.size()) + " in the lines before");
    }
    return row;
  }

  Rgba to_color(const Row& row) const {
    Rgba color{0, 0, 0, 255};
    for (std::size_t i = 0; i < row.numbers.size(); ++i) {
      const double value = row.numbers[i];
      if (bytes_since_ != 0 && value != std::floor(value)) {
        fail(row.line, "a fraction, but line " + std::to_string(bytes_since_) +
                           " has a number above 1: use 0 to 1 or whole numbers from 0 to 255 throughout");
      }
      color[i] = static_cast<std::uint8_t>(std::lround(bytes_since_ != 0 ? value : value * 255));
    }
    return color;
  }

  const std::filesystem::path& path_;
  std::vector<Row> rows_;
  std::size_t bytes_since_ = 0;  // the first line with a number above 1; 0: all numbers are from 0 to 1
};

}  // namespace

Colormap read_colormap(const std::filesystem::path& path) {
  return ColormapFileReader(path).read();
}

}  // namespace oct::app
