// Everything that makes the picture of a B-scan, ready to be drawn.
#pragma once

#include <oct_rendering/oct_rendering.h>

#include <cstdint>
#include <optional>

#include "data/colormap.h"
#include "data/image.h"
#include "data/picture.h"
#include "data/samples.h"

namespace oct::app {

// An image with its colours. Every sample is finite.
struct Layer {
  Image image;
  ValueRange range;
  Colormap colormap;
};

struct Overlay {
  Layer layer;
  std::optional<double> threshold;  // base value below which the overlay is not drawn; none: drawn everywhere
};

struct BscanScene {
  Layer base;
  std::optional<Overlay> overlay;
  PictureSize size;
  std::uint32_t background = 0;  // 0xRRGGBB
  bool firstBlur = false;
  bool secondBlur = false;
  bool pepperFilter = false;
  bool flip = false;
};

void setScene(DisplayRenderingHandle renderer, const BscanScene& scene);

Picture renderBscan(const BscanScene& scene);

}  // namespace oct::app
