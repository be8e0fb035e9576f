#include "octrender/option_values.h"

#include <array>
#include <charconv>
#include <cmath>
#include <sstream>
#include <string_view>

#include "data/colormap_reader.h"

namespace oct::app {
namespace {

constexpr unsigned max_picture_side = 65536;
constexpr std::uint64_t max_picture_pixels =
    1U << 27;  // three bytes each, and as many more while one is written
constexpr unsigned max_raw_side = 65536;

// Takes a number from 1 to the highest off the text, with the separator behind it. Without a separator the
// number ends the text. Says whether it was there.
template <class Number>
bool take_number(std::string_view& text, unsigned highest, char separator, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || number < 1 || number > highest) return false;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  if (!separator) return text.empty();
  if (!text.starts_with(separator)) return false;
  text.remove_prefix(1);
  return true;
}

// Takes "u2", "u2le" or "u2be" off the text.
bool take_sample_format(std::string_view& text, SampleFormat& format) {
  const std::optional<SampleType> type = find_sample_type(text.substr(0, 2));
  if (!type) return false;
  text.remove_prefix(2);
  format = {*type, text.starts_with("be")};
  if (text.starts_with("be") || text.starts_with("le")) text.remove_prefix(2);
  return true;
}

// Takes "+128", if anything, off the text.
bool take_offset(std::string_view text, std::optional<std::uint64_t>& offset) {
  if (text.empty()) return true;
  if (text[0] != '+') return false;
  std::uint64_t number = 0;
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data() + 1, end, number);
  if (error != std::errc() || stop != end) return false;
  offset = number;
  return true;
}

}  // namespace

std::optional<ValueRange> parse_range(const std::string& option, const std::optional<NumberPair>& numbers) {
  if (!numbers) return std::nullopt;
  const ValueRange range{numbers->first, numbers->second};
  if (!std::isfinite(range.lower) || !std::isfinite(range.upper)) {
    throw CommandLineError(option + ": both ends must be finite");
  }
  // The library computes in 32-bit floats.
  if (static_cast<float>(range.lower) == static_cast<float>(range.upper)) {
    throw CommandLineError(option + ": the two ends must differ");
  }
  return range;
}

std::optional<Spacing> parse_spacing(const std::optional<NumberPair>& numbers) {
  if (!numbers) return std::nullopt;
  const Spacing spacing{numbers->first, numbers->second};
  const auto valid = [](double value) { return std::isfinite(value) && value > 0; };
  if (!valid(spacing.depth) || !valid(spacing.lateral)) {
    throw CommandLineError("--spacing: both distances must be finite and above 0");
  }
  return spacing;
}

std::optional<Shares> parse_percentiles(const std::optional<NumberPair>& numbers) {
  if (!numbers) return std::nullopt;
  const auto& [lower, upper] = *numbers;
  if (!(lower >= 0 && lower < upper && upper <= 100)) {
    throw CommandLineError("--percentiles: both must be from 0 to 100, the first below the second");
  }
  return Shares{lower / 100, upper / 100};
}

std::vector<std::array<double, 2>> parse_opacity_points(const std::string& text) {
  std::vector<std::array<double, 2>> points;
  std::istringstream stream(text);
  bool valid = true;
  for (std::string word; valid && std::getline(stream, word, ',');) {
    std::istringstream numbers(word);
    double place = 0, part = 0;
    char colon = '\0';
    valid = numbers >> place >> colon >> part && colon == ':' && numbers.eof();
    points.push_back({place, part});
  }
  if (!valid || !is_opacity_curve(points)) {
    throw CommandLineError("--opacity-points: '" + text +
                           "' is not PLACE:PART,PLACE:PART,... of numbers from 0 to 1 with rising places");
  }
  return points;
}

std::uint32_t parse_color(const std::string& option, const std::string& text) {
  std::uint32_t color = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), color, 16);
  if (text.size() != 6 || error != std::errc() || end != text.data() + text.size()) {
    throw CommandLineError(option + ": '" + text + "' is not a colour of six hexadecimal digits, RRGGBB");
  }
  return color;
}

PictureSize parse_picture_size(const std::string& text) {
  PictureSize size;
  std::string_view rest = text;
  if (!take_number(rest, max_picture_side, 'x', size.width) ||
      !take_number(rest, max_picture_side, '\0', size.height)) {
    throw CommandLineError("--size: '" + text + "' is not WxH with sides from 1 to " +
                           std::to_string(max_picture_side));
  }
  if (std::uint64_t{size.width} * size.height > max_picture_pixels) {
    throw CommandLineError("--size: " + text + " is more than " + std::to_string(max_picture_pixels) +
                           " pixels");
  }
  return size;
}

RawLayout parse_raw_layout(const std::string& text) {
  RawLayout layout;
  layout.origin = "--raw";
  std::string_view rest = text;
  const bool sized = take_number(rest, max_raw_side, 'x', layout.depth) && [&] {
    std::string_view two = rest;
    if (take_number(two, max_raw_side, ':', layout.ascans)) {
      rest = two;
      return true;
    }
    return take_number(rest, max_raw_side, 'x', layout.ascans) &&
           take_number(rest, max_raw_side, ':', layout.bscans);
  }();
  if (!sized || !take_sample_format(rest, layout.format) || !take_offset(rest, layout.offset)) {
    throw CommandLineError("--raw: '" + text + "' is not DEPTHxASCANSxBSCANS:TYPE with sides from 1 to " +
                           std::to_string(max_raw_side) + ", one of the types " + sample_type_names() +
                           ", and perhaps le or be and +OFFSET behind it");
  }
  return layout;
}

AxisOrder parse_axes(const std::string& text) {
  constexpr std::string_view letters = "dab";  // in the order of the enumeration
  AxisOrder axes{};
  std::array<bool, 3> seen{};
  bool valid = text.size() == 3;
  for (std::size_t i = 0; valid && i < 3; ++i) {
    const std::size_t axis = letters.find(text[i]);
    valid = axis < 3 && !seen[axis];
    if (!valid) break;
    seen[axis] = true;
    axes[2 - i] = static_cast<Axis>(axis);
  }
  if (!valid) throw CommandLineError("--axes: '" + text + "' is not d, a and b in some order, such as bda");
  return axes;
}

PolarizationMode parse_polarization_mode(const std::string& text) {
  const std::span<const char* const> names = polarization_mode_names();
  std::string known;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (text == names[i] || text == std::to_string(i)) return static_cast<PolarizationMode>(i);
    known += (i ? "|" : "") + std::string(names[i]);
  }
  throw CommandLineError("--ps: '" + text + "' is neither a number from 0 to 8 nor one of " + known);
}

Colormap load_colormap(const std::string& name_or_file) {
  if (std::optional<Colormap> known = find_colormap(name_or_file)) return *std::move(known);
  if (is_own_colormap(name_or_file)) return read_colormap(from_utf8(name_or_file));
  throw CommandLineError("unknown colour map '" + name_or_file + "'; there are " + colormap_names() +
                         " and .csv files");
}

bool is_own_colormap(const std::string& name_or_file) {
  return from_utf8(name_or_file).extension() == ".csv";
}

std::vector<std::string> without_automatic_ranges(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool is_range = arguments[i] == "--range" || arguments[i] == "--overlay-range" ||
                          arguments[i] == "--surface-range" || arguments[i] == "--secondary-range";
    if (is_range && i + 1 < arguments.size() && arguments[i + 1] == "auto") {
      ++i;
    } else {
      result.push_back(arguments[i]);
    }
  }
  return result;
}

}  // namespace oct::app
