// Colour maps: the program's own, or a table of the user's.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace oct::app {

using Rgba = std::array<std::uint8_t, 4>;  // the library's layout: red, green, blue, alpha
using Colormap = std::vector<Rgba>;

constexpr std::size_t kMinColors = 2;
constexpr std::size_t kMaxColors = 4096;

// "gray, viridis, ..." for messages and help.
std::string colormapNames();

// One of the names, or the path of a .csv file.
Colormap loadColormap(const std::string& nameOrFile);

// One colour per line, r,g,b or r,g,b,a; see the help of the program for the rules.
Colormap readColormapFile(const std::filesystem::path& path);

void scaleAlpha(Colormap& colors, double factor);

// What shows when the map lies on this background (0xRRGGBB); the result is opaque.
void flattenOnto(Colormap& colors, std::uint32_t background);

}  // namespace oct::app
