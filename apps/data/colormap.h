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
std::string colormapNames();

std::optional<Colormap> findColormap(std::string_view name);

// Opacity that rises with the square of the value.
void addOpacityRamp(Colormap& colors, double opacity);

void scaleAlpha(Colormap& colors, double factor);

// What shows when the map lies on this background (0xRRGGBB); the result is opaque.
void flattenOnto(Colormap& colors, std::uint32_t background);

}  // namespace oct::app
