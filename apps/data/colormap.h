// Colour maps: those that have names, and what is done to any.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace oct::app {

using Rgba = std::array<std::uint8_t, 4>;  // the library's layout: red, green, blue, alpha
using Colormap = std::vector<Rgba>;

// "gray, viridis, ..." for messages and help.
std::string colormap_names();

std::optional<Colormap> find_colormap(std::string_view name);

void scale_alpha(Colormap& colors, double factor);

// What shows when the map lies on this background (0xRRGGBB); the result is opaque.
void flatten_onto(Colormap& colors, std::uint32_t background);

}  // namespace oct::app
