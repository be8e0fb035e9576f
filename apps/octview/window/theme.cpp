#include "octview/window/theme.h"

#include <imgui.h>

namespace oct::app {

void set_theme(bool dark, float scale) {
  ImGuiStyle style;
  if (dark) {
    ImGui::StyleColorsDark(&style);
    style.Colors[ImGuiCol_SliderGrab] = {0.20F, 0.40F, 0.72F, 1};  // its text stays readable
    style.Colors[ImGuiCol_WindowBg] = {0.09F, 0.10F, 0.12F, 1};
    style.Colors[ImGuiCol_ChildBg] = {0.07F, 0.08F, 0.09F, 1};
    style.Colors[ImGuiCol_PopupBg] = {0.12F, 0.13F, 0.16F, 1};
    style.Colors[ImGuiCol_Border] = {0.24F, 0.26F, 0.30F, 1};
  } else {
    ImGui::StyleColorsLight(&style);
    style.Colors[ImGuiCol_WindowBg] = {0.94F, 0.94F, 0.95F, 1};
    style.Colors[ImGuiCol_ChildBg] = {0.98F, 0.98F, 0.98F, 1};
    style.Colors[ImGuiCol_PopupBg] = {1, 1, 1, 1};
    style.Colors[ImGuiCol_Border] = {0.75F, 0.76F, 0.78F, 1};
    style.Colors[ImGuiCol_FrameBg] = {0.88F, 0.89F, 0.91F, 1};
  }
  style.WindowRounding = 0;
  style.ChildRounding = 0;
  style.FrameRounding = 3;
  style.GrabRounding = 3;
  style.WindowBorderSize = 0;
  style.WindowPadding = {6, 6};
  style.ItemSpacing = {6, 4};
  style.ScrollbarSize = 12;
  style.ScaleAllSizes(scale);
  ImGui::GetStyle() = style;
}

}  // namespace oct::app
