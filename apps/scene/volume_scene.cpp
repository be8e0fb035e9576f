#include "scene/volume_scene.h"

#include "client/renderers.h"
#include "scene/offscreen_picture.h"

namespace oct::app {

void setScene(OfflineRenderingHandle offline, VolumeRendererHandle renderer, const VolumeScene& scene) {
  const VolumeData& data = scene.base.data;
  setView(renderer, scene);
  checked(setOfflineAspectRatio, offline, scene.extent[0], scene.extent[1], scene.extent[2]);
  checked(allocateOfflineVolume, offline, static_cast<int>(data.depth), static_cast<int>(data.ascans),
          static_cast<int>(data.bscans));
  checked(uploadOfflineVolume, offline, data.voxels.data());
  setColors(renderer, ColoredData::Volume, scene.base.colormap, scene.base.range);
  if (scene.overlay) {
    checked(uploadOverlayOfflineVolume, offline, scene.overlay->data.voxels.data());
    setColors(renderer, ColoredData::Overlay, scene.overlay->colormap, scene.overlay->range);
  }
  if (scene.secondary) {
    const LateralMap& map = scene.secondary->map;
    checked(uploadOfflineSecondaryData, offline, static_cast<int>(map.ascans), static_cast<int>(map.bscans),
            1u, 0u, static_cast<unsigned>(map.bscans), map.values.data());
    setColors(renderer, ColoredData::Secondary, scene.secondary->colormap, scene.secondary->range);
  }
  if (scene.surface) {
    const HeightMap& surface = *scene.surface;
    checked(setSurface, renderer, static_cast<int>(data.ascans), static_cast<int>(data.bscans),
            static_cast<double>(data.depth), surface.depths.data());
    setColors(renderer, ColoredData::Surface, surface.colormap, surface.range);
  }
  checked(setRenderElements, renderer, int{scene.showVolume}, int{scene.surface.has_value()});
}

void renderVolume(const VolumeScene& scene, unsigned count,
                  const std::function<void(unsigned, const Picture&)>& take) {
  OffscreenTarget target;
  const OfflineRendering rendering;
  setScene(rendering.offline(), rendering.renderer(), scene);
  const int content = scene.overlay ? 2 : 0;
  for (unsigned i = 0; i < count; ++i) {
    checked(setAngles, rendering.renderer(), scene.angles[0], scene.angles[1] + 360.0 * i / count);
    take(i, drawPicture(target, scene.size,
                        [&] { checked(renderOfflineVolume, rendering.offline(), content); }));
  }
}

}  // namespace oct::app
