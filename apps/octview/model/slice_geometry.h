// Where a section lies on the screen, and what hands do to that.
#pragma once

#include <array>

#include "data/slices.h"
#include "octview/model/measurements.h"
#include "scene/slice_window.h"

namespace oct::app {

// Pixels to the right and downwards.
using ScreenPoint = std::array<double, 2>;

struct SliceGeometry {
  SliceAxis axis = SliceAxis::bscan;
  SliceArea area;
  ScreenPoint corner{};  // of the picture
  ScreenPoint size{1, 1};

  // The middle of a voxel is that of its square.
  ScreenPoint screen_of(const VoxelPoint& voxel) const;
  // across: the voxel's place through the section.
  VoxelPoint voxel_at(const ScreenPoint& point, double across) const;
};

// In samples.
struct SliceSize {
  std::size_t down = 1;
  std::size_t right = 1;
};

// The slice follows the hand.
void pan(SliceWindow& window, const SliceGeometry& geometry, const SliceSize& slice, const ScreenPoint& by);

// Enlarges by the factor; what lies at the point stays there.
void zoom(SliceWindow& window, const SliceGeometry& geometry, const SliceSize& slice,
          const ScreenPoint& point, double factor);

// A length of 1, 2 or 5 times a power of ten, the longest up to this one.
double round_length(double longest);

}  // namespace oct::app
