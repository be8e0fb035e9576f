#include "octview/panels/looks_panel.h"

#include <array>

#include "octview/model/layer_colors.h"
#include "octview/model/presets.h"
#include "octview/panels/widgets.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

constexpr std::array<double, 3> good_light{0.3, 0.7, 0.2};
// The box with its labels, whatever the angles.
constexpr double perspective_zoom = 52;
constexpr double orthographic_zoom = 30;

void show_mode(VolumeView& view) {
  constexpr std::array<const char*, 4> names{"Composite", "Maximum", "Mean", "Sections"};
  leave_for_labels(5.5F);
  const ImVec2 field = ImGui::GetCursorScreenPos();
  mark_item("Mode", field, {field.x + em(4), field.y + ImGui::GetFrameHeight()});
  if (ImGui::BeginCombo("Mode", names[static_cast<std::size_t>(view.look)])) {
    for (std::size_t i = 0; i < names.size(); ++i) {
      if (ImGui::Selectable(names[i], static_cast<std::size_t>(view.look) == i))
        view.look = static_cast<VolumeLook>(i);
    }
    ImGui::EndCombo();
  }
  hint("Keys 1 to 4");
}

void show_light(VolumeView& view) {
  bool lit = view.lighting != std::array<double, 3>{};
  if (ImGui::Checkbox("Light", &lit)) view.lighting = lit ? good_light : std::array<double, 3>{};
  hint("Shades where values change, so that shapes show");
  if (!lit) return;
  constexpr std::array<const char*, 3> names{"Everywhere", "Front", "Highlights"};
  for (std::size_t i = 0; i < 3; ++i) {
    leave_for_labels(6.5F);
    slide(names[i], view.lighting[i], 0, 1);
  }
}

void show_clip(VolumeView& view) {
  bool cut = view.clip.has_value();
  if (ImGui::Checkbox("Clip plane", &cut)) view.clip = cut ? std::optional(ClipSetting()) : std::nullopt;
  if (!view.clip) return;
  leave_for_labels(6.5F);
  slide("Place", view.clip->value, 0, 1);
  ImGui::Checkbox("Open", &view.clip->open);
  hint("Leaves the cut open, so that one looks into the volume");
  ImGui::SameLine();
  ImGui::Checkbox("Ghost", &view.clip->ghost);
  hint("Shows where the part that is cut away was");
}

// In the order of the renderer: across A-scans, depth, B-scans. Where they are is the crosshair's.
void show_sections(VolumeView& view) {
  constexpr std::array<const char*, 3> names{"Section", "En face", "B-scan"};
  for (const std::size_t i : {2U, 1U, 0U}) {
    bool shown = view.sections[i].has_value();
    if (ImGui::Checkbox((std::string(names[i]) + "##shown section").c_str(), &shown))
      view.sections[i] = shown ? std::optional(0.5F) : std::nullopt;
    if (i > 0) ImGui::SameLine();
  }
}

void show_color(const char* label, std::uint32_t& color) {
  std::array<float, 3> parts{};
  for (unsigned i = 0; i < 3; ++i) parts[i] = static_cast<float>(color >> (16 - 8 * i) & 0xFFU) / 255;
  if (!ImGui::ColorEdit3(label, parts.data(), ImGuiColorEditFlags_NoInputs)) return;
  color = 0;
  for (const float one : parts) color = color << 8 | static_cast<std::uint32_t>(one * 255 + 0.5F);
}

void show_view(VolumeView& view, bool spacing_known) {
  show_mode(view);
  if (view.look == VolumeLook::sections) show_sections(view);
  show_clip(view);
  if (view.look == VolumeLook::composite) show_light(view);
  bool orthographic = !view.perspective;
  if (ImGui::Checkbox("Orthographic", &orthographic)) {
    view.perspective = !orthographic;
    view.zoom = orthographic ? orthographic_zoom : perspective_zoom;
  }
  hint("Without perspective: lengths are comparable, wherever they are");
  ImGui::Checkbox("Edges", &view.edges);
  ImGui::SameLine();
  ImGui::Checkbox("Box", &view.box);
  ImGui::SameLine();
  ImGui::BeginDisabled(!spacing_known);
  ImGui::Checkbox("Marks", &view.scale_marks);
  ImGui::EndDisabled();
  hint("Scale marks in millimetres, where the spacing is known");
  if (!ImGui::TreeNode("Fine points")) return;
  leave_for_labels(6.5F);
  ImGui::SliderInt("Steps", &view.slices, 32, 1024, "%d", ImGuiSliderFlags_AlwaysClamp);
  hint("Of a ray along the diagonal; twice the voxels of the longest axis show all");
  ImGui::Checkbox("Grain", &view.jitter);
  hint("In place of the rings that few steps draw");
  show_color("Above", view.background_top);
  ImGui::SameLine();
  show_color("Below", view.background_bottom);
  ImGui::SameLine();
  show_color("Lines", view.foreground);
  ImGui::TreePop();
}

}  // namespace

void LooksPanel::show(Workspace& workspace, const LayerStatistics& statistics) {
  ViewState& state = workspace.state;
  show_presets(state, statistics);
  if (ImGui::CollapsingHeader("Values and colours", ImGuiTreeNodeFlags_DefaultOpen)) {
    ImGui::PushID("volume");
    histogram_.show(state.base, statistics.base ? &*statistics.base : nullptr);
    choose_colors(state.base);
    ImGui::PopID();
  }
  if (state.volume.look == VolumeLook::composite &&
      ImGui::CollapsingHeader("Opacity", ImGuiTreeNodeFlags_DefaultOpen))
    show_opacity(state, workspace.document);
  if (ImGui::CollapsingHeader("View of the volume", ImGuiTreeNodeFlags_DefaultOpen))
    show_view(state.volume, workspace.document.spacing().is_known());
}

void LooksPanel::show_presets(ViewState& state, const LayerStatistics& statistics) {
  const float right = ImGui::GetCursorScreenPos().x + ImGui::GetContentRegionAvail().x;
  for (const Preset& preset : presets()) {
    const bool shown = shows_preset(preset, state);
    if (shown) ImGui::PushStyleColor(ImGuiCol_Button, ImGui::GetStyleColorVec4(ImGuiCol_ButtonActive));
    const bool pressed = ImGui::Button(preset.name);
    if (shown) ImGui::PopStyleColor();
    hint(preset.purpose);
    if (pressed) {
      apply_preset(preset, state);
      if (statistics.base) follow_data(state.base, *statistics.base);
    }
    // The next one beside it where it fits.
    const Preset* const next = &preset + 1;
    if (next == presets().data() + presets().size()) continue;
    const ImGuiStyle& style = ImGui::GetStyle();
    const float width = ImGui::CalcTextSize(next->name).x + 2 * style.FramePadding.x;
    if (ImGui::GetItemRectMax().x + style.ItemSpacing.x + width < right) ImGui::SameLine();
  }
}

void LooksPanel::show_opacity(ViewState& state, const Document& document) {
  OpacityRule& rule = state.base.opacity;
  leave_for_labels(5.5F);
  slide("Opacity##highest", rule.highest, 0.01, 1);
  hint("Highest opacity of one step of a ray: low looks through everything, high stops at the surface");
  leave_for_labels(5.5F);
  slide("Shift", rule.shift, -0.5, 1);
  hint("Moves the curve of opacities along the values: to the right less is opaque");
  if (ImGui::TreeNode("Curve")) {
    curve_.show(state.base);
    ImGui::TreePop();
  }
  bool of_length = state.volume.opacity_length > 0;
  if (ImGui::Checkbox("Per length", &of_length)) {
    const std::array<double, 3> extent = document.extent();
    const double longest = std::max({extent[0], extent[1], extent[2]});
    state.volume.opacity_length = of_length ? longest / 100 : 0;
  }
  hint("Opacity of so much tissue, whatever the number of steps");
  if (!of_length) return;
  ImGui::SameLine();
  ImGui::SetNextItemWidth(em(5));
  double length = state.volume.opacity_length;
  if (ImGui::InputDouble(document.spacing().is_known() ? "mm" : "voxels", &length, 0, 0, "%.4g") &&
      length > 0 && length <= 1e6)
    state.volume.opacity_length = length;
}

}  // namespace oct::app
