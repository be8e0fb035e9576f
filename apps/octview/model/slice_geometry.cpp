#include "octview/model/slice_geometry.h"

#include <algorithm>
#include <cmath>

namespace oct::app {
namespace {

constexpr double smallest_zoom = 0.1;
constexpr double largest_zoom = 1e5;

// Something of the slice stays in the picture.
void keep_in_sight(SliceWindow& window) {
  for (double& part : window.centre) part = std::clamp(part, -0.5, 1.5);
}

// In parts of the slice.
ScreenPoint part_at(const SliceGeometry& geometry, const SliceSize& slice, const ScreenPoint& point) {
  const SliceArea& area = geometry.area;
  const double x = area.left + (point[0] - geometry.corner[0]) / geometry.size[0] * area.width;
  const double y = area.top + (point[1] - geometry.corner[1]) / geometry.size[1] * area.height;
  return {x / static_cast<double>(slice.right), y / static_cast<double>(slice.down)};
}

}  // namespace

ScreenPoint SliceGeometry::screen_of(const VoxelPoint& voxel) const {
  const SliceAxes axes = axes_of(axis);
  return {corner[0] + (voxel[axes.right] + 0.5 - area.left) / area.width * size[0],
          corner[1] + (voxel[axes.down] + 0.5 - area.top) / area.height * size[1]};
}

VoxelPoint SliceGeometry::voxel_at(const ScreenPoint& point, double across) const {
  const SliceAxes axes = axes_of(axis);
  VoxelPoint voxel{};
  voxel[axes.right] = area.left + (point[0] - corner[0]) / size[0] * area.width - 0.5;
  voxel[axes.down] = area.top + (point[1] - corner[1]) / size[1] * area.height - 0.5;
  voxel[axes.across] = across;
  return voxel;
}

void pan(SliceWindow& window, const SliceGeometry& geometry, const SliceSize& slice, const ScreenPoint& by) {
  window.centre[0] -= by[0] / geometry.size[0] * geometry.area.width / static_cast<double>(slice.right);
  window.centre[1] -= by[1] / geometry.size[1] * geometry.area.height / static_cast<double>(slice.down);
  keep_in_sight(window);
}

void zoom(SliceWindow& window, const SliceGeometry& geometry, const SliceSize& slice,
          const ScreenPoint& point, double factor) {
  const double before = window.zoom;
  window.zoom = std::clamp(before * factor, smallest_zoom, largest_zoom);
  const ScreenPoint part = part_at(geometry, slice, point);
  for (std::size_t i = 0; i < 2; ++i)
    window.centre[i] = part[i] + (window.centre[i] - part[i]) * before / window.zoom;
  keep_in_sight(window);
}

double round_length(double longest) {
  const double power = std::pow(10.0, std::floor(std::log10(longest)));
  for (const double digit : {5.0, 2.0}) {
    if (digit * power <= longest * (1 + 1e-9)) return digit * power;
  }
  return power;
}

}  // namespace oct::app
