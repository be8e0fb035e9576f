#include "octview/panels/layers_panel.h"

#include "data/file_errors.h"
#include "octview/panels/widgets.h"

namespace oct::app {

struct LayersPanel::Layer {
  const char* name;
  const char* purpose;
  DataFile SessionFiles::*file;
  LayerLook ViewState::*look;
};

const std::array<LayersPanel::Layer, 3> LayersPanel::layers{
    {{"Overlay", "A second volume of the same size, laid over", &SessionFiles::overlay, &ViewState::overlay},
     {"Surface", "A height map: depths in samples, one row per B-scan", &SessionFiles::surface,
      &ViewState::surface},
     {"Secondary", "A map over the lateral axes that colours composites", &SessionFiles::secondary,
      &ViewState::secondary}}};

void LayersPanel::show(Workspace& workspace, const LayerStatistics& statistics) {
  if (ImGui::CollapsingHeader("Layers")) {
    const std::array<const std::optional<Statistics>*, 3> found{&statistics.overlay, &statistics.surface,
                                                                &statistics.secondary};
    for (std::size_t i = 0; i < layers.size(); ++i)
      show_layer(workspace, layers[i], *found[i] ? &**found[i] : nullptr);
    if (!workspace.document.files.surface.path.empty() && workspace.state.surface.visible)
      ImGui::Checkbox("Volume behind the surface", &workspace.state.base.visible);
  }
  const std::optional<std::filesystem::path> file = chooser_.show();
  if (!file) return;
  Opening opening{workspace.document.files, workspace.state};
  opening.files.*layers[asked_for_].file = {*file, {}, {}};
  if (asked_for_ == 0) {  // volumes are read alike
    opening.files.overlay.raw = opening.files.base.raw;
    opening.files.overlay.axes = opening.files.base.axes;
  }
  LayerLook& look = (*opening.state).*layers[asked_for_].look;
  look = first_look(layers[asked_for_].file);
  if (asked_for_ == 2) opening.state->volume.secondary_colors = true;
  workspace.wanted = std::move(opening);
}

void LayersPanel::show_layer(Workspace& workspace, const Layer& layer, const Statistics* statistics) {
  const auto index = static_cast<std::size_t>(&layer - layers.data());
  const std::filesystem::path path = (workspace.document.files.*layer.file).path;
  LayerLook& look = workspace.state.*layer.look;
  ImGui::PushID(layer.name);
  if (path.empty()) {
    if (ImGui::Button((std::string("Add ") + layer.name + " ...").c_str())) {
      asked_for_ = index;
      chooser_.ask(std::string(layer.name) + " to open", FileChooser::Purpose::open,
                   std::filesystem::absolute(workspace.document.files.base.path).parent_path());
    }
    hint(layer.purpose);
    ImGui::PopID();
    return;
  }
  if (index == 2) {
    ImGui::Checkbox(layer.name, &workspace.state.volume.secondary_colors);
  } else {
    ImGui::Checkbox(layer.name, &look.visible);
  }
  hint(layer.purpose);
  ImGui::SameLine();
  if (ImGui::SmallButton((std::string("Remove##") + layer.name).c_str())) {
    Opening opening{workspace.document.files, workspace.state};
    opening.files.*layer.file = {};
    workspace.wanted = std::move(opening);
  }
  ImGui::SameLine();
  ImGui::TextDisabled("%s", to_utf8(path.filename()).c_str());
  if (ImGui::TreeNode((std::string("Colours of ") + layer.name).c_str())) {
    histograms_[index].show(look, statistics);
    choose_colors(look);
    if (index == 0) {
      leave_for_labels(6.5F);
      slide("In slices", look.opacity.highest, 0, 1);
      hint("Opacity of the overlay in slices; in the volume its values themselves decide");
    }
    ImGui::TreePop();
  }
  ImGui::PopID();
}

}  // namespace oct::app
