#include "octrender/option_values.h"

#include <charconv>
#include <cmath>
#include <string_view>

#include "data/colormap_reader.h"

namespace oct::app {
namespace {

constexpr unsigned kMaxPictureSide = 16384;            // what most OpenGL drivers allow
constexpr std::uint64_t kMaxPicturePixels = 1u << 27;  // 512 MiB of frame
constexpr unsigned kMaxRawSide = 65536;

// Takes a number from 1 to the highest off the text, with the separator behind it. Without a separator the
// number ends the text. Says whether it was there.
template <class Number>
bool takeNumber(std::string_view& text, unsigned highest, char separator, Number& number) {
  const char* const end = text.data() + text.size();
  const auto [stop, error] = std::from_chars(text.data(), end, number);
  if (error != std::errc() || number < 1 || number > highest) return false;
  text.remove_prefix(static_cast<std::size_t>(stop - text.data()));
  if (!separator) return text.empty();
  if (!text.starts_with(separator)) return false;
  text.remove_prefix(1);
  return true;
}

std::optional<RawLayout::Type> rawType(std::string_view name) {
  if (name == "f4") return RawLayout::Type::Float32;
  if (name == "u1") return RawLayout::Type::UInt8;
  if (name == "u2") return RawLayout::Type::UInt16;
  return std::nullopt;
}

}  // namespace

std::optional<ValueRange> parseRange(const std::string& option, const std::optional<NumberPair>& numbers) {
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

Spacing parseSpacing(const std::optional<NumberPair>& numbers) {
  if (!numbers) return {};
  const Spacing spacing{numbers->first, numbers->second};
  const auto valid = [](double value) { return std::isfinite(value) && value > 0; };
  if (!valid(spacing.depth) || !valid(spacing.lateral)) {
    throw CommandLineError("--spacing: both distances must be finite and above 0");
  }
  return spacing;
}

std::uint32_t parseColor(const std::string& option, const std::string& text) {
  std::uint32_t color = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), color, 16);
  if (text.size() != 6 || error != std::errc() || end != text.data() + text.size()) {
    throw CommandLineError(option + ": '" + text + "' is not a colour of six hexadecimal digits, RRGGBB");
  }
  return color;
}

PictureSize parsePictureSize(const std::string& text) {
  PictureSize size;
  std::string_view rest = text;
  if (!takeNumber(rest, kMaxPictureSide, 'x', size.width) ||
      !takeNumber(rest, kMaxPictureSide, '\0', size.height)) {
    throw CommandLineError("--size: '" + text + "' is not WxH with sides from 1 to " +
                           std::to_string(kMaxPictureSide));
  }
  if (std::uint64_t{size.width} * size.height > kMaxPicturePixels) {
    throw CommandLineError("--size: " + text + " is more than " + std::to_string(kMaxPicturePixels) +
                           " pixels");
  }
  return size;
}

RawLayout parseRawLayout(const std::string& text) {
  RawLayout layout;
  layout.origin = "--raw";
  std::string_view rest = text;
  const bool sized = takeNumber(rest, kMaxRawSide, 'x', layout.depth) &&
                     takeNumber(rest, kMaxRawSide, 'x', layout.ascans) &&
                     takeNumber(rest, kMaxRawSide, ':', layout.bscans);
  const std::optional<RawLayout::Type> type = rawType(rest);
  if (!sized || !type) {
    throw CommandLineError("--raw: '" + text + "' is not DEPTHxASCANSxBSCANS:TYPE with sides from 1 to " +
                           std::to_string(kMaxRawSide) + " and one of the types f4, u1, u2");
  }
  layout.type = *type;
  return layout;
}

PolarizationMode parsePolarizationMode(const std::string& text) {
  const std::span<const char* const> names = polarizationModeNames();
  std::string known;
  for (std::size_t i = 0; i < names.size(); ++i) {
    if (text == names[i] || text == std::to_string(i)) return static_cast<PolarizationMode>(i);
    known += (i ? "|" : "") + std::string(names[i]);
  }
  throw CommandLineError("--ps: '" + text + "' is neither a number from 0 to 8 nor one of " + known);
}

Colormap loadColormap(const std::string& nameOrFile) {
  if (std::optional<Colormap> known = findColormap(nameOrFile)) return *std::move(known);
  if (isOwnColormap(nameOrFile)) return readColormap(fromUtf8(nameOrFile));
  throw CommandLineError("unknown colour map '" + nameOrFile + "'; there are " + colormapNames() +
                         " and .csv files");
}

bool isOwnColormap(const std::string& nameOrFile) {
  return fromUtf8(nameOrFile).extension() == ".csv";
}

std::vector<std::string> withoutAutomaticRanges(const std::vector<std::string>& arguments) {
  std::vector<std::string> result;
  for (std::size_t i = 0; i < arguments.size(); ++i) {
    const bool isRange =
        arguments[i] == "--range" || arguments[i] == "--overlay-range" || arguments[i] == "--secondary-range";
    if (isRange && i + 1 < arguments.size() && arguments[i + 1] == "auto") {
      ++i;
    } else {
      result.push_back(arguments[i]);
    }
  }
  return result;
}

}  // namespace oct::app
