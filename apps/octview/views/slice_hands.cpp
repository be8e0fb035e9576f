#include "octview/views/slice_hands.h"

#include <algorithm>
#include <cmath>

#include <imgui.h>

#include "octview/model/slice_position.h"
#include "octview/views/slice_marks.h"
#include "octview/window/keys.h"

namespace oct::app {
namespace {

constexpr double zoom_of_notch = 1.15;
constexpr double zoom_of_drag = 0.15;  // natural logarithm, of one font size

ScreenPoint point_of(ImVec2 position) {
  return {static_cast<double>(position.x), static_cast<double>(position.y)};
}

Pane pane_of(SliceAxis axis) {
  return static_cast<Pane>(axis);
}

}  // namespace

std::optional<VoxelPoint> SliceHands::place(const Workspace& workspace, const ScreenPoint& mouse,
                                            const SliceGeometry& geometry) const {
  const SlicePosition section = slice_position(workspace.document, workspace.state, axis_);
  VoxelPoint voxel = geometry.voxel_at(mouse, static_cast<double>(section.position));
  if (!section.below_surface) return voxel;
  const std::optional<double> depth = surface_depth(workspace.document, voxel[1], voxel[2]);
  if (!depth) return {};
  voxel[0] = *depth + static_cast<double>(section.position);
  return voxel;
}

void SliceHands::move_cursor(Workspace& workspace, const ScreenPoint& mouse,
                             const SliceGeometry& geometry) const {
  const SlicePosition section = slice_position(workspace.document, workspace.state, axis_);
  VoxelPoint voxel = geometry.voxel_at(mouse, workspace.state.cursor[axes_of(axis_).across]);
  if (section.below_surface) voxel = place(workspace, mouse, geometry).value_or(voxel);
  const VolumeData& volume = *workspace.document.volume;
  const std::array<std::size_t, 3> sizes{volume.depth, volume.ascans, volume.bscans};
  for (std::size_t i = 0; i < 3; ++i)
    workspace.state.cursor[i] = std::clamp(std::round(voxel[i]), 0.0, static_cast<double>(sizes[i] - 1));
}

std::optional<SliceHands::PointOfMeasurement> SliceHands::point_at(const Workspace& workspace,
                                                                   const ScreenPoint& mouse,
                                                                   const SliceGeometry& geometry) const {
  const double reach = ImGui::GetFontSize() * 0.6;
  const std::vector<Measurement>& list = workspace.state.measurements;
  for (std::size_t i = list.size(); i-- > 0;) {
    for (std::size_t k = 0; k < list[i].points.size(); ++k) {
      const ScreenPoint point = geometry.screen_of(list[i].points[k]);
      if (std::hypot(point[0] - mouse[0], point[1] - mouse[1]) <= reach &&
          lies_in_section(workspace.document, workspace.state, axis_, list[i].points[k]))
        return PointOfMeasurement{i, k};
    }
  }
  return {};
}

void SliceHands::press(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry) {
  dragged_.reset();
  placing_ = false;
  if (ImGui::GetIO().KeyShift) return;
  if (!workspace.tool) {
    dragged_ = point_at(workspace, mouse, geometry);
    return;
  }
  placing_ = true;
  const std::optional<VoxelPoint> point = place(workspace, mouse, geometry);
  if (!point) {
    workspace.say("The surface has no depth here");
    return;
  }
  workspace.clicked.push_back(*point);
  if (workspace.clicked.size() < point_count(*workspace.tool)) return;
  std::vector<Measurement>& list = workspace.state.measurements;
  list.push_back({*workspace.tool, next_name(list, *workspace.tool), std::move(workspace.clicked)});
  workspace.clicked.clear();
  workspace.tool.reset();
}

void SliceHands::drag(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry,
                      const SliceSize& slice) {
  const ImGuiIO& io = ImGui::GetIO();
  if (io.MouseDelta.x == 0 && io.MouseDelta.y == 0) return;
  SliceWindow& window = workspace.state.windows[static_cast<std::size_t>(axis_)];
  if (io.MouseDown[1]) {
    const double letters = static_cast<double>(-io.MouseDelta.y) / static_cast<double>(ImGui::GetFontSize());
    zoom(window, geometry, slice, point_of(io.MouseClickedPos[1]), std::exp(zoom_of_drag * letters));
  } else if (io.MouseDown[0] && dragged_ && dragged_->measurement < workspace.state.measurements.size()) {
    if (const auto point = place(workspace, mouse, geometry))
      workspace.state.measurements[dragged_->measurement].points[dragged_->point] = *point;
  } else if (io.MouseDown[2] || (io.MouseDown[0] && !placing_)) {
    pan(window, geometry, slice, point_of(io.MouseDelta));
  }
}

void SliceHands::handle_mouse(Workspace& workspace, const SliceGeometry& geometry, const SliceSize& slice) {
  const ImGuiIO& io = ImGui::GetIO();
  const ScreenPoint mouse = point_of(io.MousePos);
  if (ImGui::IsItemClicked(ImGuiMouseButton_Left)) press(workspace, mouse, geometry);
  if (ImGui::IsItemActive()) drag(workspace, mouse, geometry, slice);
  if (!ImGui::IsItemHovered()) return;
  if (io.MouseWheel != 0) {
    zoom(workspace.state.windows[static_cast<std::size_t>(axis_)], geometry, slice, mouse,
         std::pow(zoom_of_notch, static_cast<double>(io.MouseWheel)));
  }
  const bool moved = io.MouseDelta.x != 0 || io.MouseDelta.y != 0;
  if (io.KeyShift && moved && !ImGui::IsAnyMouseDown()) {
    // To the sample that the pixel under the mouse shows.
    move_cursor(workspace, {std::floor(mouse[0]) + 0.5, std::floor(mouse[1]) + 0.5}, geometry);
  }
  if (ImGui::IsMouseDoubleClicked(ImGuiMouseButton_Left) && !workspace.tool && !placing_) {
    std::optional<Pane>& large = workspace.state.large;
    large = large ? std::nullopt : std::optional(pane_of(axis_));
  }
}

void SliceHands::handle_keys(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry) {
  ViewState& state = workspace.state;
  const auto step = [&](std::ptrdiff_t by) {
    move_slice(workspace.document, state, axis_,
               slice_position(workspace.document, state, axis_).position + by);
  };
  if (is_pressed(Key::right) || is_pressed(Key::down)) step(1);
  if (is_pressed(Key::left) || is_pressed(Key::up)) step(-1);
  if (is_pressed(Key::page_down)) step(10);
  if (is_pressed(Key::page_up)) step(-10);
  if (is_pressed(letter('F'))) state.windows[static_cast<std::size_t>(axis_)] = {};
  if (is_pressed(letter('R'))) {
    state.windows[static_cast<std::size_t>(axis_)] = {};
    const VolumeData& volume = *workspace.document.volume;
    state.cursor = {static_cast<double>(volume.depth / 2), static_cast<double>(volume.ascans / 2),
                    static_cast<double>(volume.bscans / 2)};
    state.below_surface = 0;
  }
  if (is_pressed(Key::escape)) {
    workspace.tool.reset();
    workspace.clicked.clear();
  }
  if (is_pressed(Key::del)) {
    if (const auto point = point_at(workspace, mouse, geometry)) {
      dragged_.reset();
      state.measurements.erase(state.measurements.begin() + static_cast<std::ptrdiff_t>(point->measurement));
    }
  }
}

void SliceHands::handle(Workspace& workspace, const SliceGeometry& geometry, const SliceSize& slice) {
  handle_mouse(workspace, geometry, slice);
  if (ImGui::IsItemHovered()) handle_keys(workspace, point_of(ImGui::GetIO().MousePos), geometry);
}

}  // namespace oct::app
