#include "scene/volume_scene.h"

#include <cmath>

#include "client/explanation.h"
#include "client/renderers.h"
#include "scene/offscreen_picture.h"

namespace oct::app {

void set_scene(OfflineRenderingHandle offline, VolumeRendererHandle renderer, const VolumeScene& scene) {
  const VolumeData& data = scene.base.data;
  set_view(renderer, scene);
  checked(setOfflineAspectRatio, offline, scene.extent[0], scene.extent[1], scene.extent[2]);
  checked(allocateOfflineVolume, offline, static_cast<int>(data.depth), static_cast<int>(data.ascans),
          static_cast<int>(data.bscans));
  checked(uploadOfflineVolume, offline, data.voxels.data());
  set_colors(renderer, ColoredData::volume, scene.base.colormap, scene.base.range);
  if (scene.overlay) {
    checked(uploadOverlayOfflineVolume, offline, scene.overlay->data.voxels.data());
    set_colors(renderer, ColoredData::overlay, scene.overlay->colormap, scene.overlay->range);
  }
  if (scene.secondary) {
    const LateralMap& map = scene.secondary->map;
    checked(uploadOfflineSecondaryData, offline, static_cast<int>(map.ascans), static_cast<int>(map.bscans),
            1U, 0U, static_cast<unsigned>(map.bscans), map.values.data());
    set_colors(renderer, ColoredData::secondary, scene.secondary->colormap, scene.secondary->range);
  }
  if (scene.surface) {
    const HeightMap& surface = *scene.surface;
    checked(setSurface, renderer, static_cast<int>(surface.depths.ascans),
            static_cast<int>(surface.depths.bscans), static_cast<double>(data.file_size[0]),
            surface.depths.values.data());
    set_colors(renderer, ColoredData::surface, surface.colormap, surface.range);
  }
  checked(setRenderElements, renderer, int{scene.show_volume}, int{scene.surface.has_value()});
}

std::optional<double> pixel_mm(const VolumeScene& scene) {
  if (scene.perspective) return std::nullopt;
  // The picture is a fifth of the zoom wide where the box's diagonal is 4.
  const auto& [depth, a_scans, b_scans] = scene.extent;
  const double diagonal = std::hypot(double{depth}, double{a_scans}, double{b_scans});
  return scene.zoom / 5 * diagonal / 4 / scene.size.width;
}

std::string render_volume(const VolumeScene& scene, unsigned count,
                          const std::function<void(unsigned, const Picture&)>& take, unsigned tile) {
  OffscreenTarget target;
  const OfflineRendering rendering;
  const VolumeRendererHandle renderer = rendering.renderer();
  set_scene(rendering.offline(), renderer, scene);
  const int content = scene.overlay ? 2 : 0;
  const auto draw = [&] {
    return draw_picture(target, scene.size, tile, &setRendererPart, renderer,
                        [&] { checked(renderOfflineVolume, rendering.offline(), content); });
  };
  const auto draw_on = [&](std::uint32_t background) {
    set_background(renderer, background, background);
    return draw();
  };
  for (unsigned i = 0; i < count; ++i) {
    checked(setAngles, renderer, scene.angles[0], scene.angles[1] + 360.0 * i / count);
    take(i, scene.transparent ? without_background(draw_on(0x000000), draw_on(0xFFFFFF)) : draw());
  }
  return explanation_of(explainFrame, renderer);
}

}  // namespace oct::app
