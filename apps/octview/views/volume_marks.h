// What is drawn over the picture of the volume: crosshair, measurements.
#pragma once

#include <imgui.h>

#include "octview/model/workspace.h"
#include "octview/views/volume_hands.h"

namespace oct::app {

// Within the picture's rectangle. hovered: the mouse is over it.
void draw_volume_marks(ImDrawList& list, const Workspace& workspace, const VolumeGeometry& geometry,
                       bool hovered);

}  // namespace oct::app
