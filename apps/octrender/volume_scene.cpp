#include "volume_scene.h"

#include "rendering.h"

namespace oct::app {
namespace {

std::uint32_t packed(std::uint32_t rgb) {
  return rgb << 8 | 0xFF;
}

int volumeMode(const VolumeScene& scene) {
  if (scene.look == VolumeLook::Maximum) return 1;
  if (scene.look == VolumeLook::Mean) return 2;
  return scene.secondary ? 3 : 0;
}

void setView(VolumeRendererHandle renderer, const VolumeScene& scene) {
  checked(setZoom, renderer, scene.zoom);
  checked(setUsePerspective, renderer, scene.perspective);
  checked(setRenderingSlices, renderer, scene.slices);
  checked(setRenderingMode, renderer, int{scene.look == VolumeLook::Sections});
  checked(setVolumeMode, renderer, volumeMode(scene));
  const auto& [first, second, third] = scene.sections;
  checked(setSectionalView, renderer, int{first.has_value()}, first.value_or(0.5f), int{second.has_value()},
          second.value_or(0.5f), int{third.has_value()}, third.value_or(0.5f));
  if (scene.clip) {
    checked(setClipPlane, renderer, 1, int{scene.clip->open}, static_cast<float>(scene.clip->value));
    checked(setRemoveSegment, renderer, int{scene.clip->ghost});
  }
  checked(setBorder, renderer, int{scene.scaleMarks}, int{scene.edges}, int{scene.box});
  checked(setRenderBackground, renderer, packed(scene.backgroundBottom), packed(scene.backgroundTop));
  checked(setRenderForeground, renderer, packed(scene.foreground));
}

template <class SetColors, class SetBoundaries>
void setColors(VolumeRendererHandle renderer, const Colormap& colors, const ValueRange& range,
               SetColors setMap, SetBoundaries setBoundaries) {
  checked(setMap, renderer, static_cast<const void*>(colors.data()), static_cast<int>(colors.size()));
  checked(setBoundaries, renderer, range.lower, range.upper);
}

void setData(OfflineRenderingHandle offline, VolumeRendererHandle renderer, const VolumeScene& scene) {
  const VolumeData& data = scene.base.data;
  checked(setOfflineAspectRatio, offline, scene.extent[0], scene.extent[1], scene.extent[2]);
  checked(allocateOfflineVolume, offline, static_cast<int>(data.depth), static_cast<int>(data.ascans),
          static_cast<int>(data.bscans));
  checked(uploadOfflineVolume, offline, data.voxels.data());
  setColors(renderer, scene.base.colormap, scene.base.range, setRendererColormap,
            setRendererColoringBoundaries);
  if (scene.overlay) {
    checked(uploadOverlayOfflineVolume, offline, scene.overlay->data.voxels.data());
    setColors(renderer, scene.overlay->colormap, scene.overlay->range, setOverlayRendererColormap,
              setOverlayRendererColoringBoundaries);
  }
  if (scene.secondary) {
    const LateralMap& map = scene.secondary->map;
    checked(uploadOfflineSecondaryData, offline, static_cast<int>(map.ascans), static_cast<int>(map.bscans),
            1u, 0u, static_cast<unsigned>(map.bscans), map.values.data());
    setColors(renderer, scene.secondary->colormap, scene.secondary->range, setRendererSecondaryColormap,
              setRendererSecondaryColoringBoundaries);
  }
  if (scene.surface) {
    const HeightMap& surface = *scene.surface;
    checked(setSurface, renderer, static_cast<int>(data.ascans), static_cast<int>(data.bscans),
            static_cast<double>(data.depth), surface.depths.data());
    setColors(renderer, surface.colormap, surface.range, setSurfaceColormap, setSurfaceDepths);
  }
  checked(setRenderElements, renderer, int{scene.showVolume}, int{scene.surface.has_value()});
}

}  // namespace

void renderVolume(const VolumeScene& scene, unsigned count,
                  const std::function<void(unsigned, const Picture&)>& take) {
  OffscreenTarget target;
  const VolumeRendering rendering;
  setView(rendering.renderer(), scene);
  setData(rendering.offline(), rendering.renderer(), scene);
  const int content = scene.overlay ? 2 : 0;
  for (unsigned i = 0; i < count; ++i) {
    checked(setAngles, rendering.renderer(), scene.angles[0], scene.angles[1] + 360.0 * i / count);
    take(i, target.render(scene.size, [&] { checked(renderOfflineVolume, rendering.offline(), content); }));
  }
}

}  // namespace oct::app
