// Which part of a slice a picture shows.
#pragma once

#include <array>

#include "data/image.h"
#include "data/picture.h"

namespace oct::app {

// Samples keep the aspect of their spacing, and are squares where it is not known.
struct SliceWindow {
  double zoom = 1;                         // 1: the whole slice fits
  std::array<double, 2> centre{0.5, 0.5};  // in parts of the slice: to the right, downwards

  bool operator==(const SliceWindow&) const = default;
};

// In samples, which are squares from n to n + 1: to the right and downwards. It may reach beyond the slice.
struct SliceArea {
  double left = 0;
  double top = 0;
  double width = 0;
  double height = 0;

  bool operator==(const SliceArea&) const = default;
};

// All of it, whatever its aspect.
SliceArea whole_area(const Image& slice);

SliceArea area_of(const SliceWindow& window, const Image& slice, PictureSize size);

}  // namespace oct::app
