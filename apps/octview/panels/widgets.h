// Pieces of panels.
#pragma once

#include <imgui.h>

#include "data/colormap.h"
#include "octview/model/view_state.h"

namespace oct::app {

// Lengths of the interface follow the size of its letters.
float em(float count);

// Sliders and fields leave this width for their labels.
void leave_for_labels(float ems);

bool slide(const char* label, double& value, double lowest, double highest, const char* format = "%.2f");
// Shown while the mouse rests on the last item.
void hint(const char* text);
void wrapped_text(const char* text);
void dimmed_text(const char* text);
constexpr ImU32 error_color = IM_COL32(230, 80, 70, 255);

void draw_gradient(ImDrawList& list, ImVec2 from, ImVec2 to, const Colormap& colors);

// The look's map, from a list with pictures of the maps, and whether it is turned round. True when it changed.
bool choose_colors(LayerLook& look);

}  // namespace oct::app
