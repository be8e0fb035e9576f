#include "octview/views/slice_controls.h"

#include <algorithm>
#include <string>

#include <imgui.h>

#include "octview/model/slice_position.h"
#include "octview/views/slice_marks.h"

namespace oct::app {
namespace {

// Items of different panes have different names.
std::string item(const char* shown, SliceAxis axis) {
  return std::string(shown) + "##" + title_of(axis);
}

void show_tools(Workspace& workspace, SliceAxis axis) {
  const std::string popup = item("tools", axis);
  if (ImGui::Button(item(workspace.tool ? "Stop" : "Measure", axis).c_str())) {
    if (workspace.tool) {
      workspace.stop_measuring();
    } else {
      ImGui::OpenPopup(popup.c_str());
    }
  }
  if (!ImGui::BeginPopup(popup.c_str())) return;
  for (const auto& [name, kind] : {std::pair("Distance between two points", MeasurementKind::distance),
                                   std::pair("Angle at the second of three points", MeasurementKind::angle),
                                   std::pair("Profile along a line", MeasurementKind::profile)}) {
    if (ImGui::Selectable(name)) workspace.tool = kind;
  }
  ImGui::EndPopup();
}

void show_position(Workspace& workspace, SliceAxis axis) {
  const SlicePosition place = slice_position(workspace.document, workspace.state, axis);
  int position = static_cast<int>(place.position);
  ImGui::SetNextItemWidth(-1);
  const std::string format =
      place.below_surface ? "%d below the surface" : "%d of 0 to " + std::to_string(place.last);
  if (ImGui::SliderInt(item("##position", axis).c_str(), &position, static_cast<int>(place.first),
                       static_cast<int>(place.last), format.c_str(), ImGuiSliderFlags_AlwaysClamp))
    move_slice(workspace.document, workspace.state, axis, position);
}

void show_enface(Workspace& workspace) {
  EnFace& enface = workspace.state.enface;
  const float em = ImGui::GetFontSize();
  int layers = static_cast<int>(enface.layers);
  ImGui::SetNextItemWidth(em * 6.5F);
  if (ImGui::InputInt("layers", &layers))
    enface.layers =
        static_cast<std::size_t>(std::clamp(layers, 1, static_cast<int>(workspace.document.sizes()[0])));
  ImGui::SameLine();
  int projection = static_cast<int>(enface.projection);
  ImGui::SetNextItemWidth(em * 6.5F);
  if (ImGui::Combo("##projection", &projection, "mean\0maximum\0"))
    enface.projection = static_cast<Projection>(projection);
  if (!workspace.document.surface) return;
  ImGui::SameLine();
  ImGui::Checkbox("along surface", &enface.along_surface);
}

}  // namespace

const char* title_of(SliceAxis axis) {
  return pane_names[static_cast<std::size_t>(axis)];
}

void show_slice_controls(Workspace& workspace, SliceAxis axis) {
  ImGui::AlignTextToFramePadding();
  const ImVec2 square = ImGui::GetCursorScreenPos();
  const float side = ImGui::GetFontSize() * 0.6F;
  const float top = square.y + (ImGui::GetFrameHeight() - side) / 2;
  ImGui::GetWindowDrawList()->AddRectFilled({square.x, top}, {square.x + side, top + side}, color_of(axis));
  ImGui::Dummy({side, side});
  ImGui::SameLine();
  ImGui::TextUnformatted(title_of(axis));
  ImGui::SameLine();
  show_tools(workspace, axis);
  ImGui::SameLine();
  show_position(workspace, axis);
  if (axis == SliceAxis::enface) show_enface(workspace);
}

}  // namespace oct::app
