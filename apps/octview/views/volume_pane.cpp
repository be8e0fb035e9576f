#include "octview/views/volume_pane.h"

#include <algorithm>
#include <cmath>
#include <string>

#include <imgui.h>

#include "octview/model/volume_picture.h"
#include "octview/views/slice_marks.h"
#include "octview/views/volume_marks.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

constexpr const char* title = "Volume";

ImVec2 place_in(const VolumeGeometry& geometry, double right, double down) {
  return {static_cast<float>(geometry.corner[0] + geometry.size.width * right),
          static_cast<float>(geometry.corner[1] + geometry.size.height * down)};
}

void show_volume_controls(Workspace& workspace) {
  VolumeView& view = workspace.state.volume;
  ImGui::AlignTextToFramePadding();
  ImGui::TextUnformatted(title);
  ImGui::SameLine();
  int look = static_cast<int>(view.look);
  ImGui::SetNextItemWidth(ImGui::GetFontSize() * 8);
  if (ImGui::Combo("##look", &look, "composite\0maximum\0mean\0sections\0"))
    view.look = static_cast<VolumeLook>(look);
  ImGui::SameLine();
  bool cut = view.clip.has_value();
  if (ImGui::Checkbox("Clip", &cut)) VolumeHands::toggle_clip_plane(workspace);
}

void show_notes(ImDrawList& list, const Workspace& workspace, const VolumeGeometry& geometry,
                const VolumeImage& image) {
  const float em = ImGui::GetFontSize();
  const Document& document = workspace.document;
  std::string text;
  if (document.drawn_volume->is_reduced()) text = "Shown " + reduction_text(*document.drawn_volume);
  if (image.is_partial())
    text += (text.empty() ? "" : "\n") + std::string("Shown in part: stopped while it was handed over");
  if (!text.empty()) draw_label(list, place_in(geometry, 0.5, 1), text, note_color, {0.5F, 1.2F});
  if (image.explanation().empty()) return;
  const ImVec2 corner = place_in(geometry, 0, 0);
  draw_note(list, {corner.x + em, corner.y + 2 * em}, static_cast<float>(geometry.size.width) - 2 * em,
            image.explanation());
}

}  // namespace

bool VolumePane::is_coarse() const {
  return shown_in_ == ImGui::GetFrameCount() && image_.is_owed();
}

void VolumePane::show(Workspace& workspace, LiveSession* live) {
  if (!workspace.document) return;
  show_volume_controls(workspace);
  follow_cursor(workspace.document, workspace.state);
  const ImVec2 corner = ImGui::GetCursorScreenPos();
  const ImVec2 space = ImGui::GetContentRegionAvail();
  const ImVec2 size{std::floor(space.x), std::floor(space.y)};
  if (size.x < 1 || size.y < 1) return;
  const VolumeGeometry geometry{{static_cast<double>(corner.x), static_cast<double>(corner.y)},
                                {static_cast<unsigned>(size.x), static_cast<unsigned>(size.y)}};
  shown_in_ = ImGui::GetFrameCount();
  workspace.pane_sizes[static_cast<std::size_t>(Pane::volume)] = geometry.size;

  ImGui::InvisibleButton(title, size,
                         ImGuiButtonFlags_MouseButtonLeft | ImGuiButtonFlags_MouseButtonRight |
                             ImGuiButtonFlags_MouseButtonMiddle);
  ImGui::SetItemAllowOverlap();
  mark_item(title + std::string("##pane"), corner, {corner.x + size.x, corner.y + size.y});
  const bool hovered = ImGui::IsItemHovered();
  if (hovered) workspace.pane = Pane::volume;
  hands_.handle(workspace, geometry, image_);
  const ImVec2 below = ImGui::GetCursorScreenPos();
  follow_cursor(workspace.document, workspace.state);

  ImGui::SetCursorScreenPos(corner);
  if (live) {
    image_.update(workspace, *live, geometry.size);
  } else {
    image_.update(workspace, geometry.size);
  }
  ImDrawList& list = *ImGui::GetWindowDrawList();
  if (image_.is_drawn()) {
    list.AddImage(image_.texture(), corner, {corner.x + size.x, corner.y + size.y}, {0, 1}, {1, 0});
    draw_volume_marks(list, workspace, geometry, hovered);
  }
  show_notes(list, workspace, geometry, image_);
  if (workspace.state.volume.clip) show_clip_handle(workspace, geometry);
  if (image_.is_uploading()) show_upload(geometry);
  ImGui::SetCursorScreenPos(below);
}

void VolumePane::show_upload(const VolumeGeometry& geometry) {
  const float em = ImGui::GetFontSize();
  const ImVec2 middle = place_in(geometry, 0.5, 0.5);
  ImGui::SetCursorScreenPos({middle.x - em * 8, middle.y - em});
  ImGui::ProgressBar(static_cast<float>(image_.uploaded()), {em * 12, 0});
  ImGui::SameLine();
  if (ImGui::Button("Stop##upload")) image_.stop_upload();
}

// On the right edge: at the top the plane is far away and leaves nothing, at the bottom it has not yet cut anything.
void VolumePane::show_clip_handle(Workspace& workspace, const VolumeGeometry& geometry) {
  ClipSetting& clip = *workspace.state.volume.clip;
  const float em = ImGui::GetFontSize();
  const ImVec2 top = place_in(geometry, 1, 0.1), bottom = place_in(geometry, 1, 0.9);
  const float x = top.x - em * 1.2F;
  const float y = top.y + static_cast<float>(clip.value) * (bottom.y - top.y);
  const ImVec2 from{x - em * 0.7F, y - em * 0.45F}, to{x + em * 0.7F, y + em * 0.45F};
  ImGui::SetCursorScreenPos(from);
  ImGui::InvisibleButton("Clip handle", {to.x - from.x, to.y - from.y});
  mark_item("Clip handle", from, to);
  if (ImGui::IsItemActive() && bottom.y > top.y) {
    const float mouse = ImGui::GetIO().MousePos.y;
    clip.value = std::clamp(static_cast<double>((mouse - top.y) / (bottom.y - top.y)), 0.0, 1.0);
  }
  ImDrawList& list = *ImGui::GetWindowDrawList();
  list.AddLine({x, top.y}, {x, bottom.y}, IM_COL32(255, 255, 255, 120), em * 0.15F);
  const bool held = ImGui::IsItemActive() || ImGui::IsItemHovered();
  list.AddRectFilled(from, to, held ? IM_COL32(255, 220, 90, 255) : IM_COL32(235, 235, 235, 255), em * 0.2F);
  if (held) draw_label(list, {from.x - em * 0.4F, y}, "clip plane: up to the back", note_color, {1, 0.5F});
}

}  // namespace oct::app
