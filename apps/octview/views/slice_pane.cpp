#include "octview/views/slice_pane.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <imgui.h>

#include "octview/model/slice_position.h"
#include "octview/views/slice_controls.h"
#include "octview/views/slice_marks.h"
#include "octview/window/item_index.h"

namespace oct::app {
namespace {

// What the pane shows under the mouse: a projection's value, with the voxel in the middle of its layers.
std::string text_under(const Workspace& workspace, const SliceGeometry& geometry, const Image& image,
                       const ScreenPoint& mouse) {
  const SliceAxes axes = axes_of(geometry.axis);
  const SlicePosition place = slice_position(workspace.document, workspace.state, geometry.axis);
  // As the pixel under the mouse, which has its sample at its centre.
  VoxelPoint voxel = geometry.voxel_at({std::floor(mouse[0]) + 0.5, std::floor(mouse[1]) + 0.5},
                                       static_cast<double>(place.position));
  const double right = std::round(voxel[axes.right]), down = std::round(voxel[axes.down]);
  if (right < 0 || down < 0 || right >= static_cast<double>(image.ascans) ||
      down >= static_cast<double>(image.depth))
    return {};
  if (place.below_surface) {
    voxel[0] += surface_depth(workspace.document, voxel[1], voxel[2]).value_or(0);
  }
  const std::size_t index = static_cast<std::size_t>(right) * image.depth + static_cast<std::size_t>(down);
  return place_text(workspace.document, voxel, static_cast<double>(image.samples[index]));
}

// Why nothing is seen, or not all that there is.
std::string notes_of(const VolumeData& volume, const SliceDrawing& drawing) {
  const SliceSource& source = drawing.source();
  std::string notes = drawing.explanation();
  if (source.is_finest() || source.is_reading()) return notes;
  notes += (notes.empty() ? "Shown " : "\nShown ") + reduction_text(volume);
  if (!source.error().empty()) notes += ": " + source.error();
  return notes;
}

}  // namespace

// A hidden pane takes nothing that has been read.
bool SlicePane::is_reading() const {
  return shown_in_ == ImGui::GetFrameCount() && drawing_.source().is_reading();
}

void SlicePane::show(Workspace& workspace) {
  if (!workspace.document) return;
  shown_in_ = ImGui::GetFrameCount();
  show_slice_controls(workspace, axis_);
  const ImVec2 cursor = ImGui::GetCursorScreenPos();
  const ImVec2 corner{std::floor(cursor.x), std::floor(cursor.y)};  // pixel by pixel
  const ImVec2 space = ImGui::GetContentRegionAvail();
  const ImVec2 size{std::floor(space.x), std::floor(space.y)};
  if (size.x < 1 || size.y < 1) return;
  const PictureSize pixels{static_cast<unsigned>(size.x), static_cast<unsigned>(size.y)};
  drawing_.update(workspace.document, workspace.state, pixels);
  workspace.pane_sizes[static_cast<std::size_t>(axis_)] = pixels;

  ImGui::InvisibleButton(title_of(axis_), size,
                         ImGuiButtonFlags_MouseButtonLeft | ImGuiButtonFlags_MouseButtonRight |
                             ImGuiButtonFlags_MouseButtonMiddle);
  mark_item(title_of(axis_) + std::string("##pane"), corner, {corner.x + size.x, corner.y + size.y});
  const SliceGeometry geometry{axis_, drawing_.area(), {corner.x, corner.y}, {size.x, size.y}};
  const bool hovered = ImGui::IsItemHovered();
  if (hovered) workspace.pane = static_cast<Pane>(axis_);
  hands_.handle(workspace, geometry, {drawing_.image().depth, drawing_.image().ascans});

  ImDrawList& list = *ImGui::GetWindowDrawList();
  const PixelRectangle& part = drawing_.pixels();
  if (!part.is_empty()) {
    const ImVec2 from{corner.x + static_cast<float>(part.left), corner.y + static_cast<float>(part.top)};
    list.AddImage(drawing_.texture(), from,
                  {from.x + static_cast<float>(part.width), from.y + static_cast<float>(part.height)}, {0, 1},
                  {1, 0});
  }
  std::optional<ScreenPoint> mouse;
  if (hovered) mouse = ScreenPoint{ImGui::GetIO().MousePos.x, ImGui::GetIO().MousePos.y};
  draw_slice_marks(list, workspace, geometry, mouse);
  if (mouse) workspace.under_cursor = text_under(workspace, geometry, drawing_.image(), *mouse);
  const float margin = ImGui::GetFontSize();
  if (drawing_.source().is_reading())
    draw_label(
        list, {corner.x + size.x - margin * 0.6F, corner.y + margin * 0.3F},
        "Reading all samples: " + std::to_string(static_cast<int>(drawing_.source().share() * 100)) + " %",
        note_color, {1, 0});
  const std::string notes = notes_of(*workspace.document.volume, drawing_);
  if (!notes.empty())
    draw_note(list, {corner.x + margin, corner.y + 4.5F * margin}, size.x - 2 * margin, notes);
}

}  // namespace oct::app
