// Which layers a picture of the volume shows, in which colours.
#pragma once

#include "data/colormap.h"
#include "octview/model/statistics.h"
#include "octview/model/view_state.h"

namespace oct::app {

// Where the rule of the look says that its range follows the data, puts it there.
void follow_data(LayerLook& look, const Statistics& statistics);

// The look's map, turned round where it says so, opaque; a table of the user's (.csv) keeps its own opacities. Throws a ReadError
// for a table that cannot be read.
Colormap plain_colors(const LayerLook& look);
// Of the volume: with its opacities where rays composite it.
Colormap base_colors(const LayerLook& look, VolumeLook drawn_as);
Colormap overlay_colors(const LayerLook& look);

// What is there, wanted, and goes together: secondary data colour composites only and take the overlay's place, and a volume
// is hidden only behind a surface.
struct DrawnLayers {
  bool volume = true;
  bool overlay = false;
  bool surface = false;
  bool secondary = false;
};

DrawnLayers drawn_layers(const SessionFiles& files, const ViewState& state);

}  // namespace oct::app
