#include "octview/model/workspace.h"

#include <algorithm>
#include <cmath>
#include <span>

#include "octview/model/session_file.h"

namespace oct::app {
namespace {

void find_range(LayerLook& look, std::span<const float> samples) {
  if (look.shares) look.range = quick_range(samples, *look.shares).value_or(ValueRange{});
}

VoxelPoint inside(const Document& document, VoxelPoint point) {
  const std::array<std::size_t, 3> sizes = document.sizes();
  for (std::size_t i = 0; i < 3; ++i) point[i] = std::clamp(point[i], 0.0, static_cast<double>(sizes[i]) - 1);
  return point;
}

}  // namespace

VoxelPoint nearest_voxel(const Document& document, const VoxelPoint& point) {
  return inside(document, {std::round(point[0]), std::round(point[1]), std::round(point[2])});
}

VoxelPoint middle_of(const Document& document) {
  const std::array<std::size_t, 3> sizes = document.sizes();
  return {static_cast<double>(sizes[0] / 2), static_cast<double>(sizes[1] / 2),
          static_cast<double>(sizes[2] / 2)};
}

void Workspace::add_point(const VoxelPoint& point) {
  clicked.push_back(point);
  if (clicked.size() < point_count(*tool)) return;
  state.measurements.push_back({*tool, next_name(state.measurements, *tool), clicked});
  stop_measuring();
}

void Workspace::stop_measuring() {
  tool.reset();
  clicked.clear();
}

// The list may have become shorter under the hand.
void Workspace::move_point(const MeasuredPoint& which, const VoxelPoint& to) {
  if (which.measurement < state.measurements.size())
    state.measurements[which.measurement].points[which.point] = to;
}

void Workspace::remove_measurement(std::size_t which) {
  state.measurements.erase(state.measurements.begin() + static_cast<std::ptrdiff_t>(which));
}

void Workspace::toggle_large(Pane which) {
  state.large = state.large ? std::nullopt : std::optional(which);
}

PictureSize Workspace::size_of(Pane which) const {
  const PictureSize size = pane_sizes[static_cast<std::size_t>(which)];
  return size.width == 0 ? PictureSize{1024, 768} : size;
}

Opening opening_of(const std::filesystem::path& path) {
  Opening opening;
  if (is_session(path)) {
    Session session = read_session(path);
    return {std::move(session.files), std::move(session.state)};
  }
  opening.files.base.path = path;
  return opening;
}

LayerLook first_look(DataFile SessionFiles::*layer) {
  LayerLook look;
  if (layer == &SessionFiles::base) {
    look.shares = image_shares;
  } else if (layer == &SessionFiles::overlay) {
    look.colormap = "inferno";
    look.shares = Shares{0.6, 0.998};
    look.opacity.highest = 0.5;
  } else {
    look.colormap = "viridis";
    look.shares = Shares{0.01, 0.99};
  }
  return look;
}

void fit_state(const Document& document, ViewState& state) {
  if (document.volume) find_range(state.base, document.volume->voxels);
  if (document.overlay) find_range(state.overlay, document.overlay->voxels);
  if (document.surface) find_range(state.surface, document.surface->values);
  if (document.secondary) find_range(state.secondary, document.secondary->values);
  if (document.volume) state.cursor = inside(document, state.cursor);
}

ViewState start_state(const Document& document) {
  ViewState state;
  if (!document) return state;
  state.base = first_look(&SessionFiles::base);
  state.base.opacity.shift = 0.35;  // most values of a section are darker than tissue
  state.overlay = first_look(&SessionFiles::overlay);
  state.surface = first_look(&SessionFiles::surface);
  state.secondary = first_look(&SessionFiles::secondary);
  state.cursor = middle_of(document);
  state.volume.angles = {25, -35};
  state.volume.zoom = 52;
  state.volume.scale_marks = document.spacing().is_known();
  fit_state(document, state);
  return state;
}

}  // namespace oct::app
