#include "data/arrays/text_header.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "data/arrays/length_unit.h"
#include "data/file_errors.h"

namespace oct::app {
namespace {

constexpr std::size_t max_header_bytes = std::size_t{1} << 20;
constexpr std::string_view blanks = " \t\r";

}  // namespace

std::string_view without_blanks(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  if (first == std::string_view::npos) return {};
  return text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

std::vector<std::string_view> words_of(std::string_view text) {
  std::vector<std::string_view> words;
  for (text = without_blanks(text); !text.empty(); text = without_blanks(text)) {
    const std::size_t end = std::min(text.find_first_of(blanks), text.size());
    words.push_back(text.substr(0, end));
    text.remove_prefix(end);
  }
  return words;
}

bool parse_double(std::string_view text, double& value) {
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  return error == std::errc() && end == text.data() + text.size();
}

TextHeader::TextHeader(InputFile& file, std::string what)
    : path_(file.path()), what_(std::move(what)), text_(file.start(max_header_bytes)) {}

const std::string* TextHeader::field(std::string_view name) const {
  const auto found = fields_.find(name);
  return found == fields_.end() ? nullptr : &found->second;
}

const std::string& TextHeader::needed(std::string_view name) const {
  const std::string* const value = field(name);
  if (!value) fail(what_ + " lacks '" + std::string(name) + "'");
  return *value;
}

std::optional<std::string_view> TextHeader::next_line() {
  if (position_ >= text_.size()) return std::nullopt;
  const std::size_t end = std::min(text_.find('\n', position_), text_.size());
  const std::string_view line = std::string_view(text_).substr(position_, end - position_);
  position_ = std::min(end + 1, text_.size());
  return without_blanks(line);
}

void TextHeader::fail(const std::string& reason) const {
  throw ReadError(path_, reason);
}

std::vector<double> TextHeader::numbers(std::string_view name, std::string_view text) const {
  std::vector<double> result;
  for (const std::string_view word : words_of(text)) {
    double value = 0;
    if (!parse_double(word, value)) {
      fail("'" + std::string(name) + "' in the header: '" + std::string(word) + "' is not a number");
    }
    result.push_back(value);
  }
  return result;
}

std::uint64_t TextHeader::whole_number(std::string_view name, std::string_view text) const {
  std::uint64_t value = 0;
  text = without_blanks(text);
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (error != std::errc() || end != text.data() + text.size()) {
    fail("'" + std::string(name) + "' in the header: '" + std::string(text) + "' is not a whole number");
  }
  return value;
}

std::array<std::uint64_t, 3> TextHeader::sizes(std::string_view text, std::vector<std::size_t>& axes) const {
  std::vector<std::uint64_t> all;
  for (const std::string_view word : words_of(text)) all.push_back(whole_number("sizes", word));
  axes.clear();
  for (std::size_t i = 0; i < all.size(); ++i) {
    if (all.size() <= 3 || all[i] != 1) axes.push_back(i);
  }
  if (all.size() < 2 || axes.size() > 3) {
    fail("the array has the sizes " + std::string(text) + "; an image has two axes, a volume three");
  }
  std::array<std::uint64_t, 3> sizes{1, 1, 1};
  for (std::size_t i = 0; i < axes.size(); ++i) sizes[i] = all[axes[i]];
  return sizes;
}

std::array<double, 3> TextHeader::steps_of(const std::vector<double>& all,
                                           const std::vector<std::size_t>& axes) const {
  std::array<double, 3> steps{};
  for (std::size_t i = 0; i < axes.size(); ++i) {
    if (axes[i] >= all.size()) fail(what_ + " has fewer spacings than axes");
    steps[i] = all[axes[i]];
  }
  return steps;
}

std::filesystem::path TextHeader::data_file(std::string_view name) const {
  if (name.empty() || name.find('\0') != std::string_view::npos) fail("the header names no data file");
  try {
    return from_utf8(std::string(name));
  } catch (const std::exception&) {
    fail("the name of the data file is no UTF-8");
  }
}

FileSpacing file_spacing(const std::array<double, 3>& steps, std::optional<double> unit_mm,
                         const std::string& source) {
  FileSpacing spacing;
  if (!unit_mm && std::ranges::all_of(steps, [](double step) { return step == 1 || step == 0; }))
    return spacing;
  for (std::size_t i = 0; i < 3; ++i) spacing.mm[i] = distance_mm(steps[i], unit_mm.value_or(1));
  spacing.source = source + (unit_mm ? "" : ", without a unit: taken as mm");
  return spacing;
}

}  // namespace oct::app
