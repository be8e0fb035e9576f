// Pictures as figures: with a scale bar and a colour bar, and several as panels. Everything is laid out in pixels of the
// figure.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "data/colormap.h"
#include "data/picture.h"
#include "data/samples.h"

namespace oct::app {

struct FigureStyle {
  std::optional<double> text_size;  // height of a line in pixels; none: by the size of the picture
  std::uint32_t paper = 0xFFFFFF;   // 0xRRGGBB; text is black or white, whichever is seen on it
  bool transparent = false;         // no paper, but text for it
};

struct ColorBar {
  Colormap colors;  // shown opaque
  ValueRange range;
  std::string unit;
};

struct Figure {
  Picture picture;
  // Millimetres per pixel, to the right and downwards. Where they differ each direction has a bar of its own.
  std::optional<std::array<double, 2>> pixel_mm;
  std::optional<ColorBar> color_bar;
};

Picture figure_of(const Figure& figure, const FigureStyle& style);

struct Panels {
  std::vector<Picture> pictures;
  unsigned columns = 0;             // 0: as near to a square as it goes
  std::vector<std::string> labels;  // one per picture or none at all
};

// Row by row, each row as high as its highest picture and each column as wide as its widest; pictures keep their size.
Picture panels_of(const Panels& panels, const FigureStyle& style);

}  // namespace oct::app
