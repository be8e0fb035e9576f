// Which section of a document a pane shows.
#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "octview/model/document.h"
#include "octview/model/view_state.h"

namespace oct::app {

// A section's number, or samples below the surface that it follows.
struct SlicePosition {
  std::ptrdiff_t position = 0;
  std::ptrdiff_t first = 0;  // that a person can choose
  std::ptrdiff_t last = 0;
  bool below_surface = false;
};

// En-face sections follow the surface where there is one.
SlicePosition slice_position(const Document& document, const ViewState& state, SliceAxis axis);
// Clamped to what can be chosen.
void move_slice(const Document& document, ViewState& state, SliceAxis axis, std::ptrdiff_t position);

// Voxels of an A-scan, at the middle of the surface's sample; none where it has no depth.
std::optional<double> surface_depth(const Document& document, double ascan, double bscan);

// "value 12.3, voxel 100, 20, 3 (depth, A-scan, B-scan), 0.5, 0.2, 0.03 mm". voxel: of the volume.
std::string place_text(const Document& document, const VoxelPoint& voxel, double value);

}  // namespace oct::app
