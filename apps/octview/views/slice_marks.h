// What is drawn over the picture of a section: crosshair, surface, labels, scale bar, measurements.
#pragma once

#include <optional>
#include <string>

#include <imgui.h>

#include "octview/model/slice_geometry.h"
#include "octview/model/workspace.h"

namespace oct::app {

// Of the lines of a section in the other panes, and of the name of its own.
ImU32 color_of(SliceAxis axis);

constexpr ImU32 measured_color = IM_COL32(255, 140, 220, 255);
constexpr ImU32 note_color = IM_COL32(255, 200, 120, 255);

// Readable on bright pictures and dark ones. The place is the text's upper left corner, moved back by parts of its size.
void draw_label(ImDrawList& list, ImVec2 place, const std::string& text, ImU32 color, ImVec2 back = {0, 0});

// Why there is nothing to see, in lines of at most this width.
void draw_note(ImDrawList& list, ImVec2 corner, float width, const std::string& text);

// What the tool in hand waits for.
std::string tool_text(const Workspace& workspace);

// As far from a measured point a hand still takes it.
double reach_of_points();

// Whether the point lies in the section that the pane shows.
bool lies_in_section(const Document& document, const ViewState& state, SliceAxis axis,
                     const VoxelPoint& point);

// All within the picture's rectangle, in points of the screen. hovered: where the mouse is, over the picture.
void draw_slice_marks(ImDrawList& list, const Workspace& workspace, const SliceGeometry& geometry,
                      const std::optional<ScreenPoint>& hovered);

}  // namespace oct::app
