#include "octview/views/slice_pane.h"

#include <cmath>

#include <imgui.h>

#include "client/checked.h"
#include "data/colormap.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

constexpr std::array<const char*, 3> names{"B-scan", "En face", "Section"};

std::size_t across(SliceAxis axis) {
  return axis == SliceAxis::bscan ? 2 : axis == SliceAxis::enface ? 0 : 1;
}

}  // namespace

SlicePane::SlicePane(const GlFunctions& gl, SliceAxis axis) : texture_(gl), axis_(axis) {}

void SlicePane::show(Workspace& workspace) {
  const ImVec2 size = ImGui::GetContentRegionAvail();
  const ImVec2 corner = ImGui::GetCursorScreenPos();
  const Document& document = workspace.document;
  if (!document || size.x < 1 || size.y < 1) return;
  const double position = workspace.state.cursor[across(axis_)];
  if (drawn_revision_ != document.revision || drawn_position_ != position ||
      texture_.width() != static_cast<int>(size.x) || texture_.height() != static_cast<int>(size.y)) {
    drawn_revision_ = document.revision;
    drawn_position_ = position;
    const Image slice = slice_of(*document.volume, axis_, std::lround(position), workspace.state.enface);
    texture_.draw(static_cast<int>(size.x), static_cast<int>(size.y), [&] {
      const LayerLook& look = workspace.state.base;
      const Colormap colors = find_colormap(look.colormap).value_or(Colormap());
      checked(setDisplayColormap, renderer_.handle(), static_cast<const void*>(colors.data()),
              static_cast<int>(colors.size()));
      checked(setDisplayColoringBoundaries, renderer_.handle(), look.range.lower, look.range.upper);
      checked(setDisplayData, renderer_.handle(), static_cast<int>(slice.depth),
              static_cast<int>(slice.ascans), slice.samples.data());
      checked(renderDisplay, renderer_.handle());
    });
  }
  ImGui::Image(texture_.id(), size, {0, 1}, {1, 0});
  mark_item(names[static_cast<std::size_t>(axis_)], corner, {corner.x + size.x, corner.y + size.y});
}

}  // namespace oct::app
