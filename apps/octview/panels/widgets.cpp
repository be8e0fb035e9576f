#include "octview/panels/widgets.h"

#include <string>
#include <vector>

#include "data/colormap_tables.h"
#include "data/file_errors.h"
#include "octview/model/layer_colors.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

// Pictures of maps: a few colours say what a map is.
constexpr int gradient_steps = 24;

ImU32 packed(const Rgba& color) {
  return IM_COL32(color[0], color[1], color[2], 255);
}

std::vector<std::string> known_maps() {
  std::vector<std::string> names{"gray"};
  for (const ColormapTable& table : colormap_tables()) names.emplace_back(table.name);
  return names;
}

void draw_map(const std::string& name, bool reverse, ImVec2 from, ImVec2 to) {
  LayerLook look;
  look.colormap = name;
  look.reverse = reverse;
  try {
    draw_gradient(*ImGui::GetWindowDrawList(), from, to, plain_colors(look));
  } catch (const ReadError&) {  // the user's table is gone; whatever draws with it says so
  }
}

}  // namespace

float em(float count) {
  return ImGui::GetFontSize() * count;
}

void leave_for_labels(float ems) {
  ImGui::SetNextItemWidth(-em(ems));
}

bool slide(const char* label, double& value, double lowest, double highest, const char* format) {
  return ImGui::SliderScalar(label, ImGuiDataType_Double, &value, &lowest, &highest, format,
                             ImGuiSliderFlags_AlwaysClamp);
}

void hint(const char* text) {
  if (!ImGui::IsItemHovered()) return;
  ImGui::BeginTooltip();
  ImGui::PushTextWrapPos(em(22));
  ImGui::TextUnformatted(text);
  ImGui::PopTextWrapPos();
  ImGui::EndTooltip();
}

void wrapped_text(const char* text) {
  ImGui::PushTextWrapPos(0);
  ImGui::TextUnformatted(text);
  ImGui::PopTextWrapPos();
}

void dimmed_text(const char* text) {
  ImGui::PushStyleColor(ImGuiCol_Text, ImGui::GetStyleColorVec4(ImGuiCol_TextDisabled));
  wrapped_text(text);
  ImGui::PopStyleColor();
}

void draw_gradient(ImDrawList& list, ImVec2 from, ImVec2 to, const Colormap& colors) {
  if (colors.empty()) return;
  const auto at = [&](int step) {
    return packed(colors[static_cast<std::size_t>(step) * (colors.size() - 1) / gradient_steps]);
  };
  const float width = (to.x - from.x) / gradient_steps;
  for (int i = 0; i < gradient_steps; ++i) {
    const float x = from.x + width * static_cast<float>(i);
    list.AddRectFilledMultiColor({x, from.y}, {x + width, to.y}, at(i), at(i + 1), at(i + 1), at(i));
  }
}

bool choose_colors(LayerLook& look) {
  bool changed = false;
  const float height = ImGui::GetFontSize();
  const float picture = em(4);
  leave_for_labels(5.5F);
  const ImVec2 field = ImGui::GetCursorScreenPos();
  mark_item("Colours", field, {field.x + em(4), field.y + ImGui::GetFrameHeight()});
  if (ImGui::BeginCombo("Colours", look.colormap.c_str(), ImGuiComboFlags_HeightLarge)) {
    for (const std::string& name : known_maps()) {
      const ImVec2 corner = ImGui::GetCursorScreenPos();
      draw_map(name, look.reverse, corner, {corner.x + picture, corner.y + height});
      ImGui::Dummy({picture, height});
      ImGui::SameLine();
      if (ImGui::Selectable(name.c_str(), name == look.colormap)) {
        look.colormap = name;
        changed = true;
      }
    }
    ImGui::EndCombo();
  }
  changed |= ImGui::Checkbox("Reverse", &look.reverse);
  ImGui::SameLine();
  const ImVec2 corner = ImGui::GetCursorScreenPos();
  const ImVec2 size{ImGui::GetContentRegionAvail().x, ImGui::GetFrameHeight()};
  draw_map(look.colormap, look.reverse, corner, {corner.x + size.x, corner.y + size.y});
  ImGui::Dummy(size);
  return changed;
}

}  // namespace oct::app
