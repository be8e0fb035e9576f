#include "octview/window/item_index.h"

#include <algorithm>
#include <unordered_map>

#include <imgui_internal.h>

namespace {

struct Items {
  std::vector<oct::app::IndexedItem> labelled;
  std::unordered_map<ImGuiID, ImRect> places;
  std::unordered_map<ImGuiID, bool> visible;
};

// ImGui's hooks are functions without an object.
Items& items() {
  static Items gathered;
  return gathered;
}

bool is_visible(const ImRect& place) {
  const ImGuiWindow* window = ImGui::GetCurrentContext()->CurrentWindow;
  return !window || window->ClipRect.Contains(place.GetCenter());
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): names of ImGui
void ImGuiTestEngineHook_ItemAdd(ImGuiContext*, const ImRect& place, ImGuiID id) {
  if (id != 0) items().places[id] = place;
  if (id != 0) items().visible[id] = is_visible(place);
}

void ImGuiTestEngineHook_ItemInfo(ImGuiContext*, ImGuiID id, const char* label, ImGuiItemStatusFlags) {
  const auto place = items().places.find(id);
  if (place == items().places.end() || !label) return;
  items().labelled.push_back({label, place->second.Min, place->second.Max, items().visible[id]});
}

void ImGuiTestEngineHook_Log(ImGuiContext*, const char*, ...) {}

const char* ImGuiTestEngine_FindItemDebugLabel(ImGuiContext*, ImGuiID) {
  return nullptr;
}
// NOLINTEND(readability-identifier-naming)

namespace oct::app {

void gather_items(bool on) {
  ImGui::GetCurrentContext()->TestEngineHookItems = on;
}

void forget_items() {
  items().labelled.clear();
  items().places.clear();
  items().visible.clear();
}

void mark_item(std::string_view label, ImVec2 from, ImVec2 to) {
  if (!ImGui::GetCurrentContext()->TestEngineHookItems) return;
  items().labelled.push_back({std::string(label), from, to, is_visible(ImRect(from, to))});
}

std::optional<IndexedItem> find_item(std::string_view label) {
  std::optional<IndexedItem> found;
  for (const IndexedItem& item : items().labelled) {
    if (item.label != label && item.label.substr(0, item.label.find("##")) != label) continue;
    if (!found || (item.visible && !found->visible)) found = item;
  }
  return found;
}

const std::vector<IndexedItem>& all_items() {
  return items().labelled;
}

}  // namespace oct::app
