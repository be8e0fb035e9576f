#include "octview/window/item_index.h"

#include <algorithm>
#include <unordered_map>

#include <imgui_internal.h>

namespace {

struct Place {
  ImRect rectangle;
  bool visible;
};

struct Items {
  std::vector<oct::app::IndexedItem> labelled;
  std::unordered_map<ImGuiID, Place> places;
};

// ImGui's hooks are functions without an object.
Items& items() {
  static Items gathered;
  return gathered;
}

bool is_visible(const ImRect& rectangle) {
  const ImGuiWindow* window = ImGui::GetCurrentContext()->CurrentWindow;
  return !window || window->ClipRect.Contains(rectangle.GetCenter());
}

}  // namespace

// NOLINTBEGIN(readability-identifier-naming): names of ImGui
void ImGuiTestEngineHook_ItemAdd(ImGuiContext*, const ImRect& rectangle, ImGuiID id) {
  if (id != 0) items().places[id] = {rectangle, is_visible(rectangle)};
}

void ImGuiTestEngineHook_ItemInfo(ImGuiContext*, ImGuiID id, const char* label, ImGuiItemStatusFlags) {
  const auto place = items().places.find(id);
  if (place == items().places.end() || !label) return;
  const auto& [rectangle, visible] = place->second;
  items().labelled.push_back({label, rectangle.Min, rectangle.Max, visible});
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
