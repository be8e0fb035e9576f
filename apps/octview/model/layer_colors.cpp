#include "octview/model/layer_colors.h"

#include <algorithm>

#include "data/colormap_reader.h"
#include "data/file_errors.h"

namespace oct::app {
namespace {

bool is_own(const LayerLook& look) {
  return from_utf8(look.colormap).extension() == ".csv";
}

}  // namespace

void follow_data(LayerLook& look, const Statistics& statistics) {
  if (look.shares) look.range = statistics.range(*look.shares);
}

Colormap plain_colors(const LayerLook& look) {
  std::optional<Colormap> known = find_colormap(look.colormap);
  Colormap colors = known ? *std::move(known) : read_colormap(from_utf8(look.colormap));
  if (look.reverse) std::ranges::reverse(colors);
  return colors;
}

Colormap base_colors(const LayerLook& look, VolumeLook drawn_as) {
  Colormap colors = plain_colors(look);
  if (drawn_as == VolumeLook::composite && !is_own(look)) set_opacity(colors, look.opacity);
  return colors;
}

Colormap overlay_colors(const LayerLook& look) {
  Colormap colors = plain_colors(look);
  if (!is_own(look)) set_opacity(colors, {.highest = 1, .shift = 0, .points = {}});
  return colors;
}

DrawnLayers drawn_layers(const SessionFiles& files, const ViewState& state) {
  DrawnLayers drawn;
  drawn.secondary = !files.secondary.path.empty() && state.secondary.visible &&
                    state.volume.secondary_colors && state.volume.look == VolumeLook::composite;
  drawn.overlay = !files.overlay.path.empty() && state.overlay.visible && !drawn.secondary;
  drawn.surface = !files.surface.path.empty() && state.surface.visible;
  drawn.volume = state.base.visible || !drawn.surface;
  return drawn;
}

}  // namespace oct::app
