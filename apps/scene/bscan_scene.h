// Everything that makes the picture of a B-scan, ready to be drawn.
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <string>

#include "data/colormap.h"
#include "data/image.h"
#include "data/picture.h"
#include "data/samples.h"
#include "oct_rendering/oct_rendering.h"
#include "scene/offscreen_picture.h"

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
  // 0xRRGGBB: shows around the image, and through transparent colours of the base's map.
  std::uint32_t background = 0;
  bool transparent = false;  // alpha in place of the background; the picture then has four channels
  bool first_blur = false;
  bool second_blur = false;
  bool pepper_filter = false;
  bool flip = false;
};

void set_scene(DisplayRenderingHandle renderer, const BscanScene& scene);

// Of a pixel of the picture, to the right and downwards; none where the base does not tell the distances of its samples.
std::optional<std::array<double, 2>> pixel_mm(const BscanScene& scene);

struct BscanPicture {
  Picture picture;
  std::string explanation;  // why it shows nothing; empty when it shows something
};
BscanPicture render_bscan(const BscanScene& scene, unsigned tile = largest_tile);

}  // namespace oct::app
