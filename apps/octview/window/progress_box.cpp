#include "octview/window/progress_box.h"

#include <imgui.h>

namespace oct::app {

bool show_progress_box(const char* id, const std::string& activity, double share) {
  ImGui::SetNextWindowPos(ImGui::GetMainViewport()->GetCenter(), ImGuiCond_Always, {0.5F, 0.5F});
  ImGui::Begin(
      id, nullptr,
      ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoSavedSettings);
  ImGui::TextUnformatted(activity.c_str());
  ImGui::ProgressBar(static_cast<float>(share), {ImGui::GetFontSize() * 20, 0});
  ImGui::SameLine();
  const bool stopped = ImGui::Button("Stop");
  ImGui::End();
  return stopped;
}

}  // namespace oct::app
