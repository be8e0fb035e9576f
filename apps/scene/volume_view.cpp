#include "scene/volume_view.h"

#include "client/checked.h"

namespace oct::app {
namespace {

std::uint32_t packed(std::uint32_t rgb) {
  return rgb << 8 | 0xFF;
}

int volumeMode(const VolumeView& view) {
  if (view.look == VolumeLook::Maximum) return 1;
  if (view.look == VolumeLook::Mean) return 2;
  return view.secondaryColors ? 3 : 0;
}

struct ColorFunctions {
  void (*setMap)(VolumeRendererHandle, const void*, int);
  void (*setBoundaries)(VolumeRendererHandle, double, double);
};

ColorFunctions colorFunctions(ColoredData data) {
  switch (data) {
    case ColoredData::Overlay:
      return {setOverlayRendererColormap, setOverlayRendererColoringBoundaries};
    case ColoredData::Secondary:
      return {setRendererSecondaryColormap, setRendererSecondaryColoringBoundaries};
    case ColoredData::Surface:
      return {setSurfaceColormap, setSurfaceDepths};
    default:
      return {setRendererColormap, setRendererColoringBoundaries};
  }
}

}  // namespace

// In a volume most voxels are air or noise; seen through, they would veil the rest.
Shares rangeShares(VolumeLook look) {
  if (look == VolumeLook::Composite) return {0.6, 0.998};
  if (look == VolumeLook::Mean) return {0.01, 0.98};
  return {0.01, 0.998};
}

void setView(VolumeRendererHandle renderer, const VolumeView& view) {
  checked(setZoom, renderer, view.zoom);
  checked(setUsePerspective, renderer, view.perspective);
  checked(setRenderingSlices, renderer, view.slices);
  checked(setRenderingMode, renderer, int{view.look == VolumeLook::Sections});
  checked(setVolumeMode, renderer, volumeMode(view));
  const auto& [first, second, third] = view.sections;
  checked(setSectionalView, renderer, int{first.has_value()}, first.value_or(0.5f), int{second.has_value()},
          second.value_or(0.5f), int{third.has_value()}, third.value_or(0.5f));
  if (view.clip) {
    checked(setClipPlane, renderer, 1, int{view.clip->open}, static_cast<float>(view.clip->value));
    checked(setRemoveSegment, renderer, int{view.clip->ghost});
  }
  checked(setBorder, renderer, int{view.scaleMarks}, int{view.edges}, int{view.box});
  checked(setRenderBackground, renderer, packed(view.backgroundBottom), packed(view.backgroundTop));
  checked(setRenderForeground, renderer, packed(view.foreground));
}

void setColors(VolumeRendererHandle renderer, ColoredData data, const Colormap& colors,
               const ValueRange& range) {
  const ColorFunctions functions = colorFunctions(data);
  checked(functions.setMap, renderer, static_cast<const void*>(colors.data()),
          static_cast<int>(colors.size()));
  checked(functions.setBoundaries, renderer, range.lower, range.upper);
}

}  // namespace oct::app
