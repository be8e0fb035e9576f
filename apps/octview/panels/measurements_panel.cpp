#include "octview/panels/measurements_panel.h"

#include <array>
#include <cstddef>
#include <string>

#include "data/file_errors.h"
#include "data/formats/output_file.h"
#include "octview/panels/widgets.h"

namespace oct::app {
namespace {

std::filesystem::path proposed(const Workspace& workspace, const std::string& ending) {
  const std::filesystem::path& base = workspace.document.files.base.path;
  std::filesystem::path path = std::filesystem::absolute(base.empty() ? "live" : base);
  const std::filesystem::path name = path.stem();
  return path.replace_filename(name).concat(ending);
}

}  // namespace

void MeasurementsPanel::show(Workspace& workspace) {
  const std::vector<Measurement>& list = workspace.state.measurements;
  const std::string title = "Measurements (" + std::to_string(list.size()) + ")###Measurements";
  if (ImGui::CollapsingHeader(title.c_str())) {
    const Ruler ruler = ruler_of(workspace.document.spacing());
    for (const auto& [name, kind] : {std::pair{"Distance", MeasurementKind::distance},
                                     {"Angle", MeasurementKind::angle},
                                     {"Profile", MeasurementKind::profile}}) {
      if (kind != MeasurementKind::distance) ImGui::SameLine();
      const bool active = workspace.tool == kind;
      if (active) ImGui::PushStyleColor(ImGuiCol_Button, ImGui::GetStyleColorVec4(ImGuiCol_ButtonActive));
      if (ImGui::Button(name)) {
        workspace.stop_measuring();
        if (!active) workspace.tool = kind;
      }
      if (active) ImGui::PopStyleColor();
      hint("Then click the points in a pane; Escape ends it");
    }
    dimmed_text((std::string(ruler.millimetres ? "Spacing: " : "") + ruler.note).c_str());
    show_list(workspace, ruler);
    if (!list.empty()) {
      if (ImGui::Button("Export CSV ...")) {
        profile_.reset();
        chooser_.ask("Measurements to save", FileChooser::Purpose::save,
                     proposed(workspace, "-measurements.csv"));
      }
      ImGui::SameLine();
      if (ImGui::Button("Remove all")) workspace.state.measurements.clear();
    }
  }
  if (const std::optional<std::filesystem::path> file = chooser_.show()) write(workspace, *file);
}

void MeasurementsPanel::show_list(Workspace& workspace, const Ruler& ruler) {
  std::vector<Measurement>& list = workspace.state.measurements;
  std::optional<std::size_t> removed;
  for (std::size_t i = 0; i < list.size(); ++i) {
    ImGui::PushID(static_cast<int>(i));
    std::array<char, 64> name{};
    list[i].name.copy(name.data(), name.size() - 1);
    ImGui::SetNextItemWidth(em(6));
    if (ImGui::InputText("##name", name.data(), name.size())) list[i].name = name.data();
    ImGui::SameLine();
    ImGui::TextUnformatted(value_text(ruler, list[i]).c_str());
    ImGui::SameLine();
    if (ImGui::SmallButton(("x##remove " + std::to_string(i + 1)).c_str())) removed = i;
    hint("Removes it");
    if (list[i].kind == MeasurementKind::profile) {
      ImGui::SameLine();
      if (ImGui::SmallButton("CSV")) {
        profile_ = list[i];
        chooser_.ask("Measurements to save", FileChooser::Purpose::save,
                     proposed(workspace, "-" + list[i].name + ".csv"));
      }
      hint("The values along the line");
    }
    ImGui::PopID();
  }
  if (removed) workspace.remove_measurement(*removed);
}

void MeasurementsPanel::write(Workspace& workspace, const std::filesystem::path& file) const {
  try {
    const Document& document = workspace.document;
    const Ruler ruler = ruler_of(document.spacing());
    OutputFile output(file);
    if (profile_) {
      output.write(profile_csv(
          profile_along(*document.volume, ruler, profile_->points[0], profile_->points[1]), ruler));
    } else {
      output.write(measurements_csv(workspace.state.measurements, ruler, to_utf8(document.files.base.path)));
    }
    output.commit();
    workspace.say("Saved " + to_utf8(file));
  } catch (const WriteError& error) {
    workspace.fail(error.what());
  }
}

}  // namespace oct::app
