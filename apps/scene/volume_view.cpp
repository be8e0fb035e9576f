#include "scene/volume_view.h"

#include "client/checked.h"

namespace oct::app {
namespace {

std::uint32_t packed(std::uint32_t rgb) {
  return rgb << 8 | 0xFF;
}

int volume_mode(const VolumeView& view) {
  if (view.look == VolumeLook::maximum) return 1;
  if (view.look == VolumeLook::mean) return 2;
  return view.secondary_colors ? 3 : 0;
}

struct ColorFunctions {
  void (*set_map)(VolumeRendererHandle, const void*, int);
  void (*set_boundaries)(VolumeRendererHandle, double, double);
};

ColorFunctions color_functions(ColoredData data) {
  switch (data) {
    case ColoredData::overlay:
      return {setOverlayRendererColormap, setOverlayRendererColoringBoundaries};
    case ColoredData::secondary:
      return {setRendererSecondaryColormap, setRendererSecondaryColoringBoundaries};
    case ColoredData::surface:
      return {setSurfaceColormap, setSurfaceDepths};
    default:
      return {setRendererColormap, setRendererColoringBoundaries};
  }
}

}  // namespace

// In a volume most voxels are air or noise; seen through, they would veil the rest.
Shares range_shares(VolumeLook look) {
  if (look == VolumeLook::composite) return {0.6, 0.998};
  if (look == VolumeLook::mean) return {0.01, 0.98};
  return {0.01, 0.998};
}

void set_view(VolumeRendererHandle renderer, const VolumeView& view) {
  checked(setTranslation, renderer, view.translation[0], view.translation[1], view.translation[2]);
  checked(setZoom, renderer, view.zoom);
  checked(setUsePerspective, renderer, view.perspective);
  checked(setRenderingSlices, renderer, view.slices);
  checked(setVolumeLighting, renderer, view.lighting[0], view.lighting[1], view.lighting[2]);
  checked(setRayJitter, renderer, int{view.jitter});
  checked(setOpacityLength, renderer, view.opacity_length);
  checked(setRenderingMode, renderer, int{view.look == VolumeLook::sections});
  checked(setVolumeMode, renderer, volume_mode(view));
  const auto& [first, second, third] = view.sections;
  checked(setSectionalView, renderer, int{first.has_value()}, first.value_or(0.5F), int{second.has_value()},
          second.value_or(0.5F), int{third.has_value()}, third.value_or(0.5F));
  const ClipSetting clip = view.clip.value_or(ClipSetting{});
  checked(setClipPlane, renderer, int{view.clip.has_value()}, int{clip.open}, static_cast<float>(clip.value));
  checked(setRemoveSegment, renderer, int{clip.ghost});
  checked(setBorder, renderer, int{view.scale_marks}, int{view.edges}, int{view.box});
  set_background(renderer, view.background_bottom, view.background_top);
  checked(setRenderForeground, renderer, packed(view.foreground));
}

void set_background(VolumeRendererHandle renderer, std::uint32_t bottom, std::uint32_t top) {
  checked(setRenderBackground, renderer, packed(bottom), packed(top));
}

void set_colors(VolumeRendererHandle renderer, ColoredData data, const Colormap& colors,
                const ValueRange& range) {
  const ColorFunctions functions = color_functions(data);
  checked(functions.set_map, renderer, static_cast<const void*>(colors.data()),
          static_cast<int>(colors.size()));
  checked(functions.set_boundaries, renderer, range.lower, range.upper);
}

}  // namespace oct::app
