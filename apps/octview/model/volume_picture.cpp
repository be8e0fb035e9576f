#include "octview/model/volume_picture.h"

#include <algorithm>

#include "octview/model/layer_colors.h"

namespace oct::app {

BoxExtent extent_of(const Document& document) {
  const std::array<double, 3> extent = document.extent();
  return {static_cast<float>(extent[0]), static_cast<float>(extent[1]), static_cast<float>(extent[2])};
}

VolumeScene volume_scene(const Document& document, const ViewState& state, PictureSize size) {
  const DrawnLayers drawn = drawn_layers(document.files, state);
  VolumeScene scene;
  static_cast<VolumeView&>(scene) = state.volume;
  scene.size = size;
  scene.secondary_colors = drawn.secondary;
  scene.scale_marks = state.volume.scale_marks && document.spacing().is_known();
  scene.extent = extent_of(document);
  scene.base = {document.drawn_volume, state.base.range, base_colors(state.base, state.volume.look)};
  scene.show_volume = drawn.volume;
  if (drawn.overlay)
    scene.overlay = VolumeLayer{document.drawn_overlay, state.overlay.range, overlay_colors(state.overlay)};
  if (drawn.surface) {
    scene.surface = HeightMap{document.drawn_surface, state.surface.range, plain_colors(state.surface)};
  }
  if (drawn.secondary) {
    scene.secondary =
        SecondaryColoring{document.secondary, state.secondary.range, plain_colors(state.secondary)};
  }
  return scene;
}

void follow_cursor(const Document& document, ViewState& state) {
  if (state.volume.look != VolumeLook::sections) return;
  const std::array<std::size_t, 3> sizes = document.sizes();
  constexpr std::array<std::size_t, 3> axes{1, 0, 2};  // of sections in the cursor
  for (std::size_t i = 0; i < 3; ++i) {
    if (!state.volume.sections[i]) continue;
    const double part = (state.cursor[axes[i]] + 0.5) / static_cast<double>(sizes[axes[i]]);
    state.volume.sections[i] = static_cast<float>(std::clamp(part, 0.0, 1.0));
  }
}

}  // namespace oct::app
