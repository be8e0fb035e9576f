#include "data/arrays/npy_header.h"

#include <array>
#include <charconv>
#include <string_view>

#include "data/file_errors.h"

namespace oct::app {
namespace {

constexpr std::uint32_t max_npy_header_bytes = 1 << 20;

// Reads the one dictionary form that the format allows.
class DictionaryParser {
 public:
  DictionaryParser(const std::filesystem::path& file, std::string_view text) : file_(file), text_(text) {}

  NpyHeader parse() {
    NpyHeader header;
    bool has_type = false, has_order = false, has_shape = false;
    expect('{');
    while (!accept('}')) {
      const std::string key = parse_string();
      expect(':');
      if (key == "descr") {
        header.type = parse_type();
        has_type = true;
      } else if (key == "fortran_order") {
        header.fortran_order = parse_bool();
        has_order = true;
      } else if (key == "shape") {
        header.shape = parse_shape();
        has_shape = true;
      } else {
        fail("unknown entry '" + key + "' in the .npy header");
      }
      if (accept('}')) break;
      expect(',');
    }
    skip_blanks();
    if (!text_.empty()) fail("unexpected text after the .npy header's dictionary");
    if (!has_type || !has_order || !has_shape) fail("the .npy header lacks descr, fortran_order or shape");
    return header;
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const { throw ReadError(file_, reason); }

  void skip_blanks() {
    const std::size_t first = text_.find_first_not_of(" \t\r\n");
    text_.remove_prefix(first == std::string_view::npos ? text_.size() : first);
  }

  bool accept(char wanted) {
    skip_blanks();
    if (text_.empty() || text_.front() != wanted) return false;
    text_.remove_prefix(1);
    return true;
  }

  void expect(char wanted) {
    if (!accept(wanted)) fail(std::string("the .npy header is malformed: '") + wanted + "' expected");
  }

  std::string parse_string() {
    skip_blanks();
    const char quote = text_.empty() ? '\0' : text_.front();
    if (quote != '\'' && quote != '"') fail("the .npy header is malformed: string expected");
    const std::size_t end = text_.find(quote, 1);
    if (end == std::string_view::npos) fail("the .npy header is malformed: string without end");
    std::string result(text_.substr(1, end - 1));
    text_.remove_prefix(end + 1);
    return result;
  }

  std::string parse_type() {
    if (accept('[')) fail("arrays of records are not supported; save one field");
    return parse_string();
  }

  bool parse_bool() {
    skip_blanks();
    for (const auto& [word, value] : {std::pair{std::string_view("True"), true}, {"False", false}}) {
      if (text_.substr(0, word.size()) == word) {
        text_.remove_prefix(word.size());
        return value;
      }
    }
    fail("the .npy header is malformed: fortran_order must be True or False");
  }

  std::vector<std::uint64_t> parse_shape() {
    std::vector<std::uint64_t> shape;
    expect('(');
    while (!accept(')')) {
      shape.push_back(parse_dimension());
      if (accept(')')) break;
      expect(',');
    }
    return shape;
  }

  std::uint64_t parse_dimension() {
    if (accept('-')) fail("the .npy header gives a negative dimension");
    skip_blanks();
    std::uint64_t value = 0;
    const auto [end, error] = std::from_chars(text_.data(), text_.data() + text_.size(), value);
    if (error == std::errc::result_out_of_range) fail("the .npy header gives a dimension beyond 64 bits");
    if (error != std::errc()) fail("the .npy header is malformed: dimension expected");
    text_.remove_prefix(static_cast<std::size_t>(end - text_.data()));
    return value;
  }

  const std::filesystem::path& file_;
  std::string_view text_;
};

std::uint32_t read_little_endian(ByteStream& file, std::size_t bytes) {
  std::array<unsigned char, 4> raw{};
  file.read(raw.data(), bytes);
  return raw[0] | raw[1] << 8 | raw[2] << 16 | static_cast<std::uint32_t>(raw[3]) << 24;
}

}  // namespace

NpyHeader read_npy_header(ByteStream& file) {
  constexpr std::string_view magic = "\x93NUMPY";
  std::array<char, 8> start{};
  file.seek(0);
  file.read(start.data(), start.size());
  if (std::string_view(start.data(), magic.size()) != magic) throw ReadError(file.path(), "not a .npy file");
  const int version = static_cast<unsigned char>(start[6]);
  if (version < 1 || version > 3) {
    throw ReadError(file.path(), ".npy version " + std::to_string(version) + " is not known");
  }
  const std::size_t length_bytes = version == 1 ? 2 : 4;
  const std::uint32_t length = read_little_endian(file, length_bytes);
  const std::uint64_t data_offset = start.size() + length_bytes + length;
  if (data_offset > file.most_bytes() || length > max_npy_header_bytes) {
    throw ReadError(file.path(), "the .npy header is truncated or its length is wrong");
  }
  std::string text(length, '\0');
  file.read(text.data(), text.size());
  NpyHeader header = DictionaryParser(file.path(), text).parse();
  header.data_offset = data_offset;
  return header;
}

}  // namespace oct::app
