#include "octview/views/volume_hands.h"

#include <algorithm>
#include <cmath>

#include <imgui.h>

#include "octview/model/slice_position.h"
#include "octview/model/volume_picture.h"
#include "octview/views/slice_marks.h"
#include "octview/window/keys.h"

namespace oct::app {
namespace {

constexpr double closer_by_notch = 1.15;
constexpr double closer_by_letter = 0.15;  // natural logarithm, of a drag by one font size

PixelPoint pixels(ImVec2 place) {
  return {static_cast<double>(place.x), static_cast<double>(place.y)};
}

}  // namespace

BoxPoint box_point(const Document& document, const VoxelPoint& voxel) {
  const std::array<std::size_t, 3> sizes = document.sizes();
  BoxPoint point{};
  for (std::size_t i = 0; i < 3; ++i) point[i] = (voxel[i] + 0.5) / static_cast<double>(sizes[i]);
  return point;
}

void VolumeHands::toggle_clip_plane(Workspace& workspace) {
  std::optional<ClipSetting>& clip = workspace.state.volume.clip;
  clip = clip ? std::nullopt : std::optional(ClipSetting{});
}

std::optional<MeasuredPoint> VolumeHands::point_at(const Workspace& workspace,
                                                   const VolumeGeometry& geometry) {
  const auto pixel = [&](const VoxelPoint& point) {
    return pixel_of(workspace.state.volume, extent_of(workspace.document),
                    box_point(workspace.document, point), geometry.size);
  };
  return find_point(workspace.state.measurements, geometry.inside(pixels(ImGui::GetIO().MousePos)),
                    reach_of_points(), pixel);
}

void VolumeHands::press(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image) {
  const ImGuiIO& io = ImGui::GetIO();
  placing_ = workspace.tool && !io.KeyShift;
  panning_ = io.KeyShift;
  dragged_.reset();
  if (panning_) return;
  if (!placing_) {
    dragged_ = point_at(workspace, geometry);
    return;
  }
  const auto place = image.place_at(geometry.part(pixels(io.MousePos)));
  if (place) {
    workspace.add_point(place->voxel);
  } else {
    workspace.say("Nothing of the volume is seen here");
  }
}

void VolumeHands::drag(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image) {
  const ImGuiIO& io = ImGui::GetIO();
  if (io.MouseDelta.x == 0 && io.MouseDelta.y == 0) return;
  VolumeView& view = workspace.state.volume;
  if (io.MouseDown[1]) {
    const double letters = static_cast<double>(io.MouseDelta.y) / static_cast<double>(ImGui::GetFontSize());
    zoom_at(view, geometry.inside(pixels(io.MouseClickedPos[1])), std::exp(closer_by_letter * letters),
            geometry.size);
  } else if (io.MouseDown[2] || (io.MouseDown[0] && panning_)) {
    pan(view, pixels(io.MouseDelta), geometry.size);
  } else if (io.MouseDown[0] && dragged_) {
    if (const auto place = image.place_at(geometry.part(pixels(io.MousePos))))
      workspace.move_point(*dragged_, place->voxel);
  } else if (io.MouseDown[0] && !placing_) {
    turn(view, pixels(io.MouseDelta), geometry.size);
  }
}

// Asks once per place of the mouse; while it flies over the picture nobody reads.
void VolumeHands::hover(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image) {
  const ImGuiIO& io = ImGui::GetIO();
  const PixelPoint mouse = pixels(io.MousePos);
  const bool moved = io.MouseDelta.x != 0 || io.MouseDelta.y != 0;
  const bool linked = io.KeyShift && moved && !ImGui::IsAnyMouseDown();
  if (!linked && !image.is_full()) {
    asked_at_.reset();
    return;
  }
  if (linked || asked_at_ != mouse) {
    if (!linked && std::hypot(io.MouseDelta.x, io.MouseDelta.y) > ImGui::GetFontSize()) return;
    const auto place = image.place_at(geometry.part(mouse));
    asked_at_ = mouse;
    asked_ = place ? place_text(workspace.document, place->voxel, place->value) : "";
    if (linked && place) workspace.state.cursor = nearest_voxel(workspace.document, place->voxel);
  }
  workspace.under_cursor = asked_;
}

void VolumeHands::handle_keys(Workspace& workspace, const VolumeGeometry& geometry) {
  VolumeView& view = workspace.state.volume;
  if (is_pressed(letter('R'))) reset_camera(view, geometry.size);
  if (is_pressed(letter('F'))) fit_box(view, extent_of(workspace.document), geometry.size);
  if (is_pressed(Key::escape)) workspace.stop_measuring();
  if (!is_pressed(Key::del)) return;
  if (const auto point = point_at(workspace, geometry)) {
    dragged_.reset();
    workspace.remove_measurement(point->measurement);
  }
}

void VolumeHands::handle(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image) {
  const ImGuiIO& io = ImGui::GetIO();
  for (int mode = 0; mode < 4; ++mode)
    if (is_pressed(letter(static_cast<char>('1' + mode))))
      workspace.state.volume.look = static_cast<VolumeLook>(mode);
  if (is_pressed(letter('C'))) toggle_clip_plane(workspace);
  if (ImGui::IsItemClicked(ImGuiMouseButton_Left)) press(workspace, geometry, image);
  if (ImGui::IsItemActive()) drag(workspace, geometry, image);
  if (!ImGui::IsItemHovered()) return;
  if (io.MouseWheel != 0) {
    zoom_at(workspace.state.volume, geometry.inside(pixels(io.MousePos)),
            std::pow(closer_by_notch, -static_cast<double>(io.MouseWheel)), geometry.size);
  }
  handle_keys(workspace, geometry);
  hover(workspace, geometry, image);
  if (ImGui::IsMouseDoubleClicked(ImGuiMouseButton_Left) && !workspace.tool && !placing_)
    workspace.toggle_large(Pane::volume);
}

}  // namespace oct::app
