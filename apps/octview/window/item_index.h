// Where the items of the interface are, by their labels, for input scripts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <imgui.h>

namespace oct::app {

struct IndexedItem {
  std::string label;  // with what follows ##
  ImVec2 from;
  ImVec2 to;
  bool visible;  // at least half of it
};

// Items are gathered while this is on, and only then.
void gather_items(bool on);
void forget_items();

// What has no label of ImGui's own.
void mark_item(std::string_view label, ImVec2 from, ImVec2 to);

// By the whole label, or by what is shown of it; what lies within the window goes first.
std::optional<IndexedItem> find_item(std::string_view label);
const std::vector<IndexedItem>& all_items();

}  // namespace oct::app
