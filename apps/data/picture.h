// The finished picture and its size.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace oct::app {

struct PictureSize {
  unsigned width = 0;
  unsigned height = 0;

  bool operator==(const PictureSize&) const = default;
};

// Distance between two samples, both in the same unit.
struct Spacing {
  double depth = 1;
  double lateral = 1;
};

// 8-bit red, green, blue, top row first; with four channels alpha as well, which multiplies none of them.
struct Picture {
  PictureSize size;
  std::vector<std::uint8_t> pixels;
  unsigned channels = 3;
};

// One pixel per sample along the axis with the finer spacing, so that no sample is lost, and as many along
// the other as the aspect asks for; scaled down where a side would be longer than 4096 pixels.
PictureSize natural_picture_size(std::size_t depth, std::size_t ascans, const Spacing& spacing);

// What shows on any background, from the same picture on black and on white: colours with alpha, four channels. On black and
// on white it gives the two pictures again, to within rounding.
Picture without_background(const Picture& on_black, const Picture& on_white);

// Turns what an offscreen frame delivers, red, green, blue, alpha and the top row first, into a picture.
Picture to_picture(PictureSize size, std::span<const std::uint8_t> rgba);

}  // namespace oct::app
