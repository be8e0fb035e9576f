#include "scene/bscan_scene.h"

#include <limits>

#include "client/renderers.h"
#include "scene/offscreen_picture.h"

namespace oct::app {
namespace {

void setImage(void (*setter)(DisplayRenderingHandle, int, int, const float*), DisplayRenderingHandle renderer,
              const Image& image) {
  checked(setter, renderer, static_cast<int>(image.depth), static_cast<int>(image.ascans),
          image.samples.data());
}

void setBase(DisplayRenderingHandle renderer, const Layer& layer) {
  setImage(setDisplayData, renderer, layer.image);
  checked(setDisplayColormap, renderer, layer.colormap.data(), static_cast<int>(layer.colormap.size()));
  checked(setDisplayColoringBoundaries, renderer, layer.range.lower, layer.range.upper);
}

void setOverlay(DisplayRenderingHandle renderer, const Overlay& overlay) {
  const Layer& layer = overlay.layer;
  setImage(setDisplayOverlayData, renderer, layer.image);
  checked(setDisplayOverlayColormap, renderer, 0, layer.colormap.data(),
          static_cast<int>(layer.colormap.size()));
  checked(setDisplayOveralyColoringBoundaries, renderer, 0, layer.range.lower, layer.range.upper);
  // The library's own start, 0, would hide the overlay wherever the base is in negative decibels.
  const double everywhere = std::numeric_limits<float>::lowest();
  checked(setDisplayOveralyThreshold, renderer, overlay.threshold.value_or(everywhere));
  checked(setDisplayNumberOverlays, renderer, 0, 1);
}

}  // namespace

void setScene(DisplayRenderingHandle renderer, const BscanScene& scene) {
  setBase(renderer, scene.base);
  if (scene.overlay) setOverlay(renderer, *scene.overlay);
  checked(setBackgroundColor, renderer, static_cast<int>(scene.background));
  checked(setDisplayBlur, renderer, int{scene.firstBlur}, int{scene.secondBlur});
  checked(setDisplayPepperFilter, renderer, int{scene.pepperFilter});
  checked(setDisplayFlip, renderer, int{scene.flip});
}

Picture renderBscan(const BscanScene& scene) {
  OffscreenTarget target;
  const DisplayRenderer renderer;
  setScene(renderer.handle(), scene);
  return drawPicture(target, scene.size, [&] { checked(renderDisplay, renderer.handle()); });
}

}  // namespace oct::app
