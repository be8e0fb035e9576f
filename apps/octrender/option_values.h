// Values of command line options that several verbs take. One that makes no sense throws a CommandLineError
// that names the option.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "data/colormap.h"
#include "data/data_file.h"
#include "data/opacity.h"
#include "data/picture.h"
#include "data/samples.h"
#include "scene/polarization_mode.h"

namespace oct::app {

class CommandLineError : public std::runtime_error {
  using runtime_error::runtime_error;
};

using NumberPair = std::pair<double, double>;

// "LO HI", two different finite numbers. Without them the range is to be found from the samples.
std::optional<ValueRange> parse_range(const std::string& option, const std::optional<NumberPair>& numbers);

// "DEPTH LATERAL", both above 0.
std::optional<Spacing> parse_spacing(const std::optional<NumberPair>& numbers);

// "LO HI", percents from 0 to 100 in rising order.
std::optional<Shares> parse_percentiles(const std::optional<NumberPair>& numbers);

// "0:0,0.5:0.1,1:1": the points of an opacity curve.
std::vector<std::array<double, 2>> parse_opacity_points(const std::string& text);

// RRGGBB in hexadecimal digits.
std::uint32_t parse_color(const std::string& option, const std::string& text);

// "WxH".
PictureSize parse_picture_size(const std::string& text);

// "DEPTHxASCANSxBSCANS:TYPE", with "le" or "be" and "+OFFSET" behind it; without the B-scans there is one.
RawLayout parse_raw_layout(const std::string& text);

// "bda": the slowest axis first.
AxisOrder parse_axes(const std::string& text);

// A name or a number from 0 to 8.
PolarizationMode parse_polarization_mode(const std::string& text);

// The name of a colour map, or the path of a .csv file.
Colormap load_colormap(const std::string& name_or_file);

// True for a table of the user's, whose alpha counts.
bool is_own_colormap(const std::string& name_or_file);

// "--range auto" says what is so without it. The parser cannot take either one word or two
// numbers without taking the name of the input for the second number, so the pair of words
// leaves the command line beforehand.
std::vector<std::string> without_automatic_ranges(const std::vector<std::string>& arguments);

}  // namespace oct::app
