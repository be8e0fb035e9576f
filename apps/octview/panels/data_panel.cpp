#include "octview/panels/data_panel.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "data/file_errors.h"
#include "octview/model/measurements.h"
#include "octview/panels/widgets.h"

namespace oct::app {
namespace {

void choose_file(Workspace& workspace) {
  const std::string open = to_utf8(workspace.document.files.base.path.filename());
  ImGui::SetNextItemWidth(-1);
  if (!ImGui::BeginCombo("##offered", open.c_str(), ImGuiComboFlags_HeightLarge)) return;
  for (const std::filesystem::path& path : workspace.offered) {
    if (!ImGui::Selectable(to_utf8(path).c_str(), path == workspace.document.files.base.path)) continue;
    try {
      workspace.wanted = opening_of(path);
    } catch (const ReadError& error) {
      workspace.fail(error.what());
    }
  }
  ImGui::EndCombo();
}

}  // namespace

void DataPanel::show(Workspace& workspace) {
  const Document& document = workspace.document;
  if (workspace.offered.size() > 1) {
    choose_file(workspace);
  } else {
    ImGui::TextUnformatted(document.title.c_str());
    hint(document.title.c_str());
  }
  if (!ImGui::CollapsingHeader("Data")) return;
  const auto& [depth, a_scans, b_scans] = document.sizes();
  wrapped_text((std::to_string(depth) + " x " + std::to_string(a_scans) + " x " + std::to_string(b_scans) +
                " voxels (depth, A-scans, B-scans)")
                   .c_str());
  if (document.not_finite > 0)
    wrapped_text(
        (std::to_string(document.not_finite) + " values are not finite; the lowest stands for them").c_str());
  const Ruler ruler = ruler_of(document.spacing());
  dimmed_text((std::string(ruler.millimetres ? "Spacing: " : "") + ruler.note).c_str());
  if (document.files.base.path.empty()) return;  // live: the device knows
  show_extent(workspace);
  bool decibels = document.files.decibels;
  if (ImGui::Checkbox("20 log10 of the values", &decibels)) {
    Opening opening{document.files, workspace.state};
    opening.files.decibels = decibels;
    workspace.wanted = std::move(opening);
  }
}

void DataPanel::show_extent(Workspace& workspace) {
  const Document& document = workspace.document;
  if (shown_revision_ != document.revision) {
    shown_revision_ = document.revision;
    extent_ = ruler_of(document.spacing()).millimetres ? document.extent() : std::array<double, 3>{};
  }
  leave_for_labels(5.5F);
  bool changed = false;
  for (const auto& [label, value] :
       {std::pair{"mm deep", &extent_[0]}, {"mm wide", &extent_[1]}, {"mm long", &extent_[2]}}) {
    leave_for_labels(5.5F);
    changed |= ImGui::InputDouble(label, value, 0, 0, "%.6g", ImGuiInputTextFlags_EnterReturnsTrue);
  }
  hint("Of the whole volume: along depth, A-scans and B-scans");
  const bool whole =
      std::ranges::all_of(extent_, [](double mm) { return std::isfinite(mm) && mm >= 1e-6 && mm <= 1e6; });
  if (!changed || !whole) return;
  Opening opening{document.files, workspace.state};
  opening.files.extent = extent_;
  opening.state->volume.scale_marks = true;
  workspace.wanted = std::move(opening);
}

}  // namespace oct::app
