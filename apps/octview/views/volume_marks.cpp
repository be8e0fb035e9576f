#include "octview/views/volume_marks.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "octview/model/measurements.h"
#include "octview/model/volume_picture.h"
#include "octview/views/slice_marks.h"

namespace oct::app {
namespace {

class VolumeMarks {
 public:
  VolumeMarks(ImDrawList& list, const Workspace& workspace, const VolumeGeometry& geometry)
      : list_(list), workspace_(workspace), geometry_(geometry), extent_(extent_of(workspace.document)) {}

  // Through the box, each in the colours of the two sections that meet in it. Sections show where they are themselves.
  void draw_crosshair() {
    const ViewState& state = workspace_.state;
    if (!state.crosshair || state.volume.look == VolumeLook::sections) return;
    const BoxPoint cursor = box_point(workspace_.document, state.cursor);
    constexpr std::array<SliceAxis, 3> sections{SliceAxis::enface, SliceAxis::third, SliceAxis::bscan};
    for (std::size_t axis = 0; axis < 3; ++axis) {
      BoxPoint from = cursor, to = cursor;
      from[axis] = 0;
      to[axis] = 1;
      const auto begin = screen(from), end = screen(to);
      if (begin && end) list_.AddLine(*begin, *end, color_of(sections[axis]), 1);
    }
    if (const auto at = screen(cursor)) list_.AddCircle(*at, em() * 0.3F, IM_COL32_WHITE);
  }

  void draw_measurements() {
    const Ruler ruler = ruler_of(workspace_.document.spacing());
    for (const Measurement& measurement : workspace_.state.measurements) {
      const auto place = draw_points(measurement.points);
      if (place)
        draw_label(list_, {place->x + em() * 0.6F, place->y}, value_text(ruler, measurement), measured_color,
                   {0, 0.5F});
    }
  }

  void draw_tool(bool hovered) {
    if (!workspace_.tool) return;
    draw_points(workspace_.clicked);
    if (!hovered) return;
    draw_label(list_,
               {static_cast<float>(geometry_.corner[0] + geometry_.size.width / 2.0),
                static_cast<float>(geometry_.corner[1]) + em() * 0.3F},
               tool_text(workspace_), measured_color, {0.5F, 0});
  }

 private:
  static float em() { return ImGui::GetFontSize(); }

  std::optional<ImVec2> screen(const BoxPoint& point) const {
    const auto pixel = pixel_of(workspace_.state.volume, extent_, point, geometry_.size);
    if (!pixel) return std::nullopt;
    return ImVec2{static_cast<float>(geometry_.corner[0] + (*pixel)[0]),
                  static_cast<float>(geometry_.corner[1] + (*pixel)[1])};
  }

  // Joined by lines. Where the second one is seen, or the first of one.
  std::optional<ImVec2> draw_points(const std::vector<VoxelPoint>& points) {
    std::optional<ImVec2> last, second;
    for (std::size_t i = 0; i < points.size(); ++i) {
      const auto place = screen(box_point(workspace_.document, points[i]));
      if (place) list_.AddCircle(*place, em() * 0.3F, measured_color, 0, em() * 0.1F);
      if (place && last) list_.AddLine(*last, *place, measured_color, em() * 0.1F);
      if (i < 2) second = place;
      last = place;
    }
    return second;
  }

  ImDrawList& list_;
  const Workspace& workspace_;
  const VolumeGeometry& geometry_;
  const BoxExtent extent_;
};

}  // namespace

void draw_volume_marks(ImDrawList& list, const Workspace& workspace, const VolumeGeometry& geometry,
                       bool hovered) {
  const ImVec2 from{static_cast<float>(geometry.corner[0]), static_cast<float>(geometry.corner[1])};
  list.PushClipRect(
      from,
      {from.x + static_cast<float>(geometry.size.width), from.y + static_cast<float>(geometry.size.height)},
      true);
  VolumeMarks marks(list, workspace, geometry);
  marks.draw_crosshair();
  marks.draw_measurements();
  marks.draw_tool(hovered);
  list.PopClipRect();
}

}  // namespace oct::app
