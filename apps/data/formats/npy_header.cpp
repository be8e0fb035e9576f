#include "data/formats/npy_header.h"

#include <array>
#include <charconv>
#include <string_view>

#include "data/file_errors.h"

namespace oct::app {
namespace {

// Reads the one dictionary form that the format allows.
class DictionaryParser {
 public:
  DictionaryParser(const std::filesystem::path& file, std::string_view text) : file_(file), text_(text) {}

  NpyHeader parse() {
    NpyHeader header;
    bool hasType = false, hasOrder = false, hasShape = false;
    expect('{');
    while (!accept('}')) {
      const std::string key = parseString();
      expect(':');
      if (key == "descr") {
        header.type = parseType();
        hasType = true;
      } else if (key == "fortran_order") {
        header.fortranOrder = parseBool();
        hasOrder = true;
      } else if (key == "shape") {
        header.shape = parseShape();
        hasShape = true;
      } else {
        fail("unknown entry '" + key + "' in the .npy header");
      }
      if (accept('}')) break;
      expect(',');
    }
    skipBlanks();
    if (!text_.empty()) fail("unexpected text after the .npy header's dictionary");
    if (!hasType || !hasOrder || !hasShape) fail("the .npy header lacks descr, fortran_order or shape");
    return header;
  }

 private:
  [[noreturn]] void fail(const std::string& reason) const { throw ReadError(file_, reason); }

  void skipBlanks() {
    const std::size_t first = text_.find_first_not_of(" \t\r\n");
    text_.remove_prefix(first == std::string_view::npos ? text_.size() : first);
  }

  bool accept(char wanted) {
    skipBlanks();
    if (text_.empty() || text_.front() != wanted) return false;
    text_.remove_prefix(1);
    return true;
  }

  void expect(char wanted) {
    if (!accept(wanted)) fail(std::string("the .npy header is malformed: '") + wanted + "' expected");
  }

  std::string parseString() {
    skipBlanks();
    const char quote = text_.empty() ? '\0' : text_.front();
    if (quote != '\'' && quote != '"') fail("the .npy header is malformed: string expected");
    const std::size_t end = text_.find(quote, 1);
    if (end == std::string_view::npos) fail("the .npy header is malformed: string without end");
    std::string result(text_.substr(1, end - 1));
    text_.remove_prefix(end + 1);
    return result;
  }

  std::string parseType() {
    if (accept('[')) fail("arrays of records are not supported; save one field");
    return parseString();
  }

  bool parseBool() {
    skipBlanks();
    for (const auto& [word, value] : {std::pair{std::string_view("True"), true}, {"False", false}}) {
      if (text_.substr(0, word.size()) == word) {
        text_.remove_prefix(word.size());
        return value;
      }
    }
    fail("the .npy header is malformed: fortran_order must be True or False");
  }

  std::vector<std::uint64_t> parseShape() {
    std::vector<std::uint64_t> shape;
    expect('(');
    while (!accept(')')) {
      shape.push_back(parseDimension());
      if (accept(')')) break;
      expect(',');
    }
    return shape;
  }

  std::uint64_t parseDimension() {
    if (accept('-')) fail("the .npy header gives a negative dimension");
    skipBlanks();
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

std::uint32_t readLittleEndian(InputFile& file, std::size_t bytes) {
  std::array<unsigned char, 4> raw{};
  file.read(raw.data(), bytes);
  return raw[0] | raw[1] << 8 | raw[2] << 16 | static_cast<std::uint32_t>(raw[3]) << 24;
}

}  // namespace

NpyHeader readNpyHeader(InputFile& file) {
  constexpr std::string_view kMagic = "\x93NUMPY";
  std::array<char, 8> start{};
  file.seek(0);
  file.read(start.data(), start.size());
  if (std::string_view(start.data(), kMagic.size()) != kMagic)
    throw ReadError(file.path(), "not a .npy file");
  const int version = static_cast<unsigned char>(start[6]);
  if (version < 1 || version > 3) {
    throw ReadError(file.path(), ".npy version " + std::to_string(version) + " is not known");
  }
  const std::size_t lengthBytes = version == 1 ? 2 : 4;
  const std::uint32_t length = readLittleEndian(file, lengthBytes);
  const std::uint64_t dataOffset = start.size() + lengthBytes + length;
  if (dataOffset > file.size()) {
    throw ReadError(file.path(), "the .npy header is truncated or its length is wrong");
  }
  std::string text(length, '\0');
  file.read(text.data(), text.size());
  NpyHeader header = DictionaryParser(file.path(), text).parse();
  header.dataOffset = dataOffset;
  return header;
}

}  // namespace oct::app
