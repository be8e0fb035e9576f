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
  workspace.state.cursor = nearest_voxel(workspace.document, voxel);
}

std::optional<MeasuredPoint> SliceHands::point_at(const Workspace& workspace, const ScreenPoint& mouse,
                                                  const SliceGeometry& geometry) const {
  const auto screen_of = [&](const VoxelPoint& point) -> std::optional<ScreenPoint> {
    if (!lies_in_section(workspace.document, workspace.state, axis_, point)) return {};
    return geometry.screen_of(point);
  };
  return find_point(workspace.state.measurements, mouse, reach_of_points(), screen_of);
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
  if (point) {
    workspace.add_point(*point);
  } else {
    workspace.say("The surface has no depth here");
  }
}

void SliceHands::drag(Workspace& workspace, const ScreenPoint& mouse, const SliceGeometry& geometry,
                      const SliceSize& slice) {
  const ImGuiIO& io = ImGui::GetIO();
  if (io.MouseDelta.x == 0 && io.MouseDelta.y == 0) return;
  SliceWindow& window = workspace.state.windows[static_cast<std::size_t>(axis_)];
  if (io.MouseDown[1]) {
    const double letters = static_cast<double>(-io.MouseDelta.y) / static_cast<double>(ImGui::GetFontSize());
    zoom(window, geometry, slice, point_of(io.MouseClickedPos[1]), std::exp(zoom_of_drag * letters));
  } else if (io.MouseDown[0] && dragged_) {
    if (const auto point = place(workspace, mouse, geometry)) workspace.move_point(*dragged_, *point);
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
  if (ImGui::IsMouseDoubleClicked(ImGuiMouseButton_Left) && !workspace.tool && !placing_)
    workspace.toggle_large(static_cast<Pane>(axis_));
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
    state.cursor = middle_of(workspace.document);
    state.below_surface = 0;
  }
  if (is_pressed(Key::escape)) workspace.stop_measuring();
  if (is_pressed(Key::del)) {
    if (const auto point = point_at(workspace, mouse, geometry)) {
      dragged_.reset();
      workspace.remove_measurement(point->measurement);
    }
  }
}

void SliceHands::handle(Workspace& workspace, const SliceGeometry& geometry, const SliceSize& slice) {
  handle_mouse(workspace, geometry, slice);
  if (ImGui::IsItemHovered()) handle_keys(workspace, point_of(ImGui::GetIO().MousePos), geometry);
}

}  // namespace oct::app
