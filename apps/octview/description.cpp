// What scripts are told of the viewer. Apart, because the writer of JSON takes long to compile.
#include <imgui.h>
#include <nlohmann/json.hpp>

#include "octview/viewer.h"
#include "octview/window/item_index.h"

namespace oct::app {

std::string Viewer::description() const {
  const ViewState& state = workspace_.state;
  nlohmann::json json;
  json["title"] = workspace_.document.title;
  json["live"] = {{"running", is_live()}, {"shown", live_.statistics().shown}, {"error", live_.error()}};
  json["cursor"] = state.cursor;
  json["under_cursor"] = workspace_.under_cursor;
  json["message"] = workspace_.message;
  json["message_is_error"] = workspace_.message_is_error;
  json["range"] = {state.base.range.lower, state.base.range.upper};
  json["opacity_points"] = state.base.opacity.points;
  const char* const clipboard = ImGui::GetClipboardText();
  json["clipboard"] = clipboard ? clipboard : "";
  json["angles"] = state.volume.angles;
  json["zoom"] = state.volume.zoom;
  json["mode"] = static_cast<int>(state.volume.look);
  json["measured_points"] = nlohmann::json::array();
  for (const Measurement& measurement : state.measurements)
    json["measured_points"].push_back(measurement.points);
  json["large"] = state.large ? pane_names[static_cast<std::size_t>(*state.large)] : "";
  json["items"] = nlohmann::json::array();
  const float scale = window_.scale();
  for (const IndexedItem& item : all_items()) {
    if (!item.visible) continue;
    json["items"].push_back({{"label", item.label},
                             {"from", {item.from.x / scale, item.from.y / scale}},
                             {"to", {item.to.x / scale, item.to.y / scale}}});
  }
  return json.dump(1);
}

}  // namespace oct::app
