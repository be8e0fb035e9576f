#include "octview/window/keys.h"

#include <array>
#include <utility>

#include <imgui.h>

namespace oct::app {

bool is_pressed(Key key, bool control, bool shift) {
  const ImGuiIO& io = ImGui::GetIO();
  return !io.WantTextInput && io.KeyCtrl == control && io.KeyShift == shift && !io.KeyAlt &&
         ImGui::IsKeyPressed(static_cast<int>(key));
}

bool is_question_mark_pressed() {
  const ImGuiIO& io = ImGui::GetIO();
  if (io.WantTextInput) return false;
  for (const ImWchar character : io.InputQueueCharacters)
    if (character == '?') return true;
  return false;
}

std::optional<Key> find_key(std::string_view name) {
  if (name.size() == 1 && ((name[0] >= 'A' && name[0] <= 'Z') || (name[0] >= '0' && name[0] <= '9')))
    return letter(name[0]);
  static constexpr std::array<std::pair<std::string_view, Key>, 17> names{{
      {"Escape", Key::escape},
      {"Enter", Key::enter},
      {"Tab", Key::tab},
      {"Backspace", Key::backspace},
      {"Delete", Key::del},
      {"Right", Key::right},
      {"Left", Key::left},
      {"Down", Key::down},
      {"Up", Key::up},
      {"PageUp", Key::page_up},
      {"PageDown", Key::page_down},
      {"Home", Key::home},
      {"End", Key::end},
      {"Shift", Key::shift},
      {"Ctrl", Key::control},
      {"Alt", Key::alt},
      {"Space", letter(' ')},
  }};
  for (const auto& [known, key] : names)
    if (known == name) return key;
  return {};
}

}  // namespace oct::app
