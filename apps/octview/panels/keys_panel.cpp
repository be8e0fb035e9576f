#include "octview/panels/keys_panel.h"

#include <array>

#include <imgui.h>

namespace oct::app {
namespace {

struct Hint {
  const char* hand;
  const char* effect;
};

constexpr std::array<Hint, 19> hints{{
    {"Left drag", "turns the volume, moves a section"},
    {"Middle drag, Shift + left drag", "moves"},
    {"Wheel, right drag", "zooms towards the cursor"},
    {"Shift + move", "takes the crosshair along, in all panes"},
    {"Double click", "one large pane, and back"},
    {"Arrows", "next section of the pane under the cursor"},
    {"Page Up, Page Down", "ten sections further"},
    {"R", "resets the view"},
    {"F", "fits it into the pane"},
    {"1", "composite"},
    {"2", "maximum"},
    {"3", "mean"},
    {"4", "sections"},
    {"C", "clip plane, with a handle to drag"},
    {"Ctrl + O", "opens a file or a session"},
    {"Ctrl + S", "saves a picture of the pane under the cursor"},
    {"Ctrl + C", "copies it"},
    {"Ctrl + Q", "ends the program"},
    {"?", "shows and hides this"},
}};

}  // namespace

void show_keys_panel(bool& shown) {
  if (!shown) return;
  ImGui::SetNextWindowPos(ImGui::GetMainViewport()->GetCenter(), ImGuiCond_Always, {0.5F, 0.5F});
  ImGui::Begin("Keys", &shown,
               ImGuiWindowFlags_NoCollapse | ImGuiWindowFlags_AlwaysAutoResize |
                   ImGuiWindowFlags_NoSavedSettings | ImGuiWindowFlags_NoMove);
  if (ImGui::BeginTable("##keys", 2)) {
    for (const Hint& hint : hints) {
      ImGui::TableNextColumn();
      ImGui::TextUnformatted(hint.hand);
      ImGui::TableNextColumn();
      ImGui::TextUnformatted(hint.effect);
    }
    ImGui::EndTable();
  }
  ImGui::End();
}

}  // namespace oct::app
