#include "octview/model/slice_position.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace oct::app {

SlicePosition slice_position(const Document& document, const ViewState& state, SliceAxis axis) {
  const auto count = static_cast<std::ptrdiff_t>(document.sizes()[axes_of(axis).across]);
  if (axis == SliceAxis::enface && state.enface.along_surface && document.surface)
    return {std::lround(state.below_surface), -count, count, true};
  return {std::clamp<std::ptrdiff_t>(std::lround(state.cursor[axes_of(axis).across]), 0, count - 1), 0,
          count - 1, false};
}

void move_slice(const Document& document, ViewState& state, SliceAxis axis, std::ptrdiff_t position) {
  const SlicePosition now = slice_position(document, state, axis);
  const auto wanted = static_cast<double>(std::clamp(position, now.first, now.last));
  (now.below_surface ? state.below_surface : state.cursor[axes_of(axis).across]) = wanted;
  if (!now.below_surface) return;
  if (const auto depth = surface_depth(document, state.cursor[1], state.cursor[2]))
    state.cursor[0] = std::clamp(*depth + wanted, 0.0, static_cast<double>(document.sizes()[0] - 1));
}

std::optional<double> surface_depth(const Document& document, double ascan, double bscan) {
  if (!document.surface) return {};
  const LateralMap& map = *document.surface;
  const auto index = [](double voxel, std::size_t voxels, std::size_t samples) {
    const double place = (voxel + 0.5) / static_cast<double>(voxels) * static_cast<double>(samples);
    return static_cast<std::size_t>(std::clamp(std::floor(place), 0.0, static_cast<double>(samples - 1)));
  };
  const std::array<std::size_t, 3> sizes = document.sizes();
  const float depth =
      map.values[index(bscan, sizes[2], map.bscans) * map.ascans + index(ascan, sizes[1], map.ascans)];
  if (!std::isfinite(depth)) return {};
  return static_cast<double>(depth);
}

std::string place_text(const Document& document, const VoxelPoint& voxel, double value) {
  std::array<char, 200> text{};
  if (std::isnan(value)) {
    std::snprintf(text.data(), text.size(), "no value");
  } else {
    std::snprintf(text.data(), text.size(), "value %.5g", value);
  }
  std::string result = text.data();
  std::snprintf(text.data(), text.size(), "   voxel %ld, %ld, %ld (depth, A-scan, B-scan)",
                std::lround(voxel[0]), std::lround(voxel[1]), std::lround(voxel[2]));
  result += text.data();
  const Ruler ruler = ruler_of(document.spacing());
  if (!ruler.millimetres) return result;
  std::snprintf(text.data(), text.size(), "   %.4g, %.4g, %.4g mm", voxel[0] * ruler.step[0],
                voxel[1] * ruler.step[1], voxel[2] * ruler.step[2]);
  return result + text.data();
}

}  // namespace oct::app
