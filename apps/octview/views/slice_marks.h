// What is drawn over the picture of a section: crosshair, surface, labels, scale bar, measurements.
#pragma once

#include <optional>

#include <imgui.h>

#include "octview/model/slice_geometry.h"
#include "octview/model/workspace.h"

namespace oct::app {

// Of the lines of a section in the other panes, and of the name of its own.
ImU32 color_of(SliceAxis axis);

// Whether the point lies in the section that the pane shows.
bool lies_in_section(const Document& document, const ViewState& state, SliceAxis axis,
                     const VoxelPoint& point);

// All within the picture's rectangle, in points of the screen. hovered: where the mouse is, over the picture.
void draw_slice_marks(ImDrawList& list, const Workspace& workspace, const SliceGeometry& geometry,
                      const std::optional<ScreenPoint>& hovered);

}  // namespace oct::app
