#include "octview/views/volume_hands.h"

#include <algorithm>
#include <cmath>

#include <imgui.h>

#include "octview/model/slice_position.h"
#include "octview/window/keys.h"

namespace oct::app {
namespace {

constexpr double closer_by_notch = 1.15;
constexpr double closer_by_letter = 0.15;  // natural logarithm, of a drag by one font size

PixelPoint pixels(ImVec2 place) {
  return {static_cast<double>(place.x), static_cast<double>(place.y)};
}

std::array<std::size_t, 3> sizes_of(const VolumeData& volume) {
  return {volume.depth, volume.ascans, volume.bscans};
}

}  // namespace

BoxExtent extent_of(const Document& document) {
  const std::array<double, 3> extent = document.extent();
  return {static_cast<float>(extent[0]), static_cast<float>(extent[1]), static_cast<float>(extent[2])};
}

BoxPoint box_point(const Document& document, const VoxelPoint& voxel) {
  const std::array<std::size_t, 3> sizes = sizes_of(*document.volume);
  BoxPoint point{};
  for (std::size_t i = 0; i < 3; ++i) point[i] = (voxel[i] + 0.5) / static_cast<double>(sizes[i]);
  return point;
}

void VolumeHands::toggle_clip_plane(Workspace& workspace) {
  std::optional<ClipSetting>& clip = workspace.state.volume.clip;
  clip = clip ? std::nullopt : std::optional(ClipSetting{});
}

void VolumeHands::press(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image) {
  const ImGuiIO& io = ImGui::GetIO();
  placing_ = workspace.tool && !io.KeyShift;
  panning_ = io.KeyShift;
  if (!placing_) return;
  const auto place = image.place_at(workspace, geometry.part(pixels(io.MousePos)));
  if (!place) {
    workspace.say("Nothing of the volume is seen here");
    return;
  }
  workspace.clicked.push_back(place->voxel);
  if (workspace.clicked.size() < point_count(*workspace.tool)) return;
  std::vector<Measurement>& list = workspace.state.measurements;
  list.push_back({*workspace.tool, next_name(list, *workspace.tool), std::move(workspace.clicked)});
  workspace.clicked.clear();
  workspace.tool.reset();
}

void VolumeHands::drag(Workspace& workspace, const VolumeGeometry& geometry) {
  const ImGuiIO& io = ImGui::GetIO();
  if (io.MouseDelta.x == 0 && io.MouseDelta.y == 0) return;
  VolumeView& view = workspace.state.volume;
  if (io.MouseDown[1]) {
    const double letters = static_cast<double>(io.MouseDelta.y) / static_cast<double>(ImGui::GetFontSize());
    zoom_at(view, geometry.inside(pixels(io.MouseClickedPos[1])), std::exp(closer_by_letter * letters),
            geometry.size);
  } else if (io.MouseDown[2] || (io.MouseDown[0] && panning_)) {
    pan(view, pixels(io.MouseDelta), geometry.size);
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
    const auto place = image.place_at(workspace, geometry.part(mouse));
    asked_at_ = mouse;
    asked_ = place ? place_text(workspace.document, place->voxel, place->value) : "";
    if (linked && place) {
      const std::array<std::size_t, 3> sizes = sizes_of(*workspace.document.volume);
      for (std::size_t i = 0; i < 3; ++i)
        workspace.state.cursor[i] =
            std::clamp(std::round(place->voxel[i]), 0.0, static_cast<double>(sizes[i] - 1));
    }
  }
  workspace.under_cursor = asked_;
}

void VolumeHands::handle_keys(Workspace& workspace, const VolumeGeometry& geometry) {
  VolumeView& view = workspace.state.volume;
  if (is_pressed(letter('R'))) reset_camera(view, geometry.size);
  if (is_pressed(letter('F'))) fit_box(view, extent_of(workspace.document), geometry.size);
  if (is_pressed(Key::escape)) {
    workspace.tool.reset();
    workspace.clicked.clear();
  }
}

void VolumeHands::handle(Workspace& workspace, const VolumeGeometry& geometry, const VolumeImage& image) {
  const ImGuiIO& io = ImGui::GetIO();
  for (int mode = 0; mode < 4; ++mode)
    if (is_pressed(letter(static_cast<char>('1' + mode))))
      workspace.state.volume.look = static_cast<VolumeLook>(mode);
  if (is_pressed(letter('C'))) toggle_clip_plane(workspace);
  if (ImGui::IsItemClicked(ImGuiMouseButton_Left)) press(workspace, geometry, image);
  if (ImGui::IsItemActive()) drag(workspace, geometry);
  if (!ImGui::IsItemHovered()) return;
  if (io.MouseWheel != 0) {
    zoom_at(workspace.state.volume, geometry.inside(pixels(io.MousePos)),
            std::pow(closer_by_notch, -static_cast<double>(io.MouseWheel)), geometry.size);
  }
  handle_keys(workspace, geometry);
  hover(workspace, geometry, image);
  if (ImGui::IsMouseDoubleClicked(ImGuiMouseButton_Left) && !workspace.tool && !placing_) {
    std::optional<Pane>& large = workspace.state.large;
    large = large ? std::nullopt : std::optional(Pane::volume);
  }
}

}  // namespace oct::app
