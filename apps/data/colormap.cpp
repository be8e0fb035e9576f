#include "data/colormap.h"

#include <charconv>
#include <cmath>
#include <cstddef>

#include "data/colormap_tables.h"

namespace oct::app {
namespace {

std::uint8_t to_byte(double value) {
  return static_cast<std::uint8_t>(std::lround(value));
}

Colormap gray_colormap() {
  Colormap colors;
  for (int i = 0; i < 256; ++i) {
    const auto level = static_cast<std::uint8_t>(i);
    colors.push_back({level, level, level, 255});
  }
  return colors;
}

Colormap decode_table(std::string_view digits) {
  const auto channel = [&](std::size_t position) {
    std::uint8_t value = 0;
    std::from_chars(digits.data() + position, digits.data() + position + 2, value, 16);
    return value;
  };
  Colormap colors;
  for (std::size_t i = 0; i < digits.size(); i += 6) {
    colors.push_back({channel(i), channel(i + 2), channel(i + 4), 255});
  }
  return colors;
}

}  // namespace

std::string colormap_names() {
  std::string names = "gray";
  for (const ColormapTable& table : colormap_tables()) names += ", " + std::string(table.name);
  return names;
}

std::optional<Colormap> find_colormap(std::string_view name) {
  if (name == "gray") return gray_colormap();
  for (const ColormapTable& table : colormap_tables()) {
    if (name == table.name) return decode_table(table.colors);
  }
  return std::nullopt;
}

void scale_alpha(Colormap& colors, double factor) {
  for (Rgba& color : colors) color[3] = to_byte(color[3] * factor);
}

void flatten_onto(Colormap& colors, std::uint32_t background) {
  for (Rgba& color : colors) {
    const double alpha = color[3] / 255.0;
    for (unsigned channel = 0; channel < 3; ++channel) {
      const double behind = background >> (16 - 8 * channel) & 0xFF;
      color[channel] = to_byte(color[channel] * alpha + behind * (1 - alpha));
    }
    color[3] = 255;
  }
}

}  // namespace oct::app
