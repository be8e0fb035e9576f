#include "option_values.h"

#include <charconv>
#include <cmath>

#include "failure.h"

namespace oct::app {

std::optional<ValueRange> parseRange(const std::string& option, const std::optional<NumberPair>& numbers) {
  if (!numbers) return std::nullopt;
  const ValueRange range{numbers->first, numbers->second};
  if (!std::isfinite(range.lower) || !std::isfinite(range.upper)) {
    throw badCommandLine(option + ": both ends must be finite");
  }
  // The library computes in 32-bit floats.
  if (static_cast<float>(range.lower) == static_cast<float>(range.upper)) {
    throw badCommandLine(option + ": the two ends must differ");
  }
  return range;
}

Spacing parseSpacing(const std::optional<NumberPair>& numbers) {
  if (!numbers) return {};
  const Spacing spacing{numbers->first, numbers->second};
  const auto valid = [](double value) { return std::isfinite(value) && value > 0; };
  if (!valid(spacing.depth) || !valid(spacing.lateral)) {
    throw badCommandLine("--spacing: both distances must be finite and above 0");
  }
  return spacing;
}

std::uint32_t parseColor(const std::string& option, const std::string& text) {
  std::uint32_t color = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), color, 16);
  if (text.size() != 6 || error != std::errc() || end != text.data() + text.size()) {
    throw badCommandLine(option + ": '" + text + "' is not a colour of six hexadecimal digits, RRGGBB");
  }
  return color;
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
