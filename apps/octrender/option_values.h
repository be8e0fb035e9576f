// Values of command line options that several verbs take. A value that makes no sense throws a command line
// failure that names the option.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "picture.h"
#include "samples.h"

namespace oct::app {

using NumberPair = std::pair<double, double>;

// "LO HI", two different finite numbers. Without them the range is to be found from the samples.
std::optional<ValueRange> parseRange(const std::string& option, const std::optional<NumberPair>& numbers);

// "DEPTH LATERAL", both above 0; without them equal spacing.
Spacing parseSpacing(const std::optional<NumberPair>& numbers);

// RRGGBB in hexadecimal digits.
std::uint32_t parseColor(const std::string& option, const std::string& text);

// "--range auto" says what is so without it. The parser cannot take either one word or two numbers without
// taking the name of the input for the second number, so the pair of words leaves the command line
// beforehand.
std::vector<std::string> withoutAutomaticRanges(const std::vector<std::string>& arguments);

}  // namespace oct::app
