#include "scene/bscan_scene.h"

#include <utility>

#include "client/explanation.h"
#include "client/renderers.h"
#include "scene/display_layers.h"
#include "scene/offscreen_picture.h"

namespace oct::app {

void set_scene(DisplayRenderingHandle renderer, const BscanScene& scene) {
  set_display_base(renderer, scene.base.image, scene.base.range);
  set_display_colors(renderer, scene.base.colormap, scene.background);
  if (scene.overlay) {
    const Layer& layer = scene.overlay->layer;
    set_display_overlay(renderer, layer.image, layer.range, layer.colormap, scene.overlay->threshold);
    checked(setDisplayNumberOverlays, renderer, 0, 1);
  }
  checked(setDisplayBlur, renderer, int{scene.first_blur}, int{scene.second_blur});
  checked(setDisplayPepperFilter, renderer, int{scene.pepper_filter});
  checked(setDisplayFlip, renderer, int{scene.flip});
}

std::optional<std::array<double, 2>> pixel_mm(const BscanScene& scene) {
  const Image& image = scene.base.image;
  const auto [depth, lateral, ignored] = image.spacing.mm;
  if (!(depth > 0 && lateral > 0)) return std::nullopt;
  return std::array{lateral * static_cast<double>(image.ascans) / scene.size.width,
                    depth * static_cast<double>(image.depth) / scene.size.height};
}

BscanPicture render_bscan(const BscanScene& scene, unsigned tile) {
  OffscreenTarget target;
  const DisplayRenderer owner;
  const DisplayRenderingHandle renderer = owner.handle();
  set_scene(renderer, scene);
  const auto draw = [&] {
    return draw_picture(target, scene.size, tile, &setDisplayPart, renderer,
                        [&] { checked(renderDisplay, renderer); });
  };
  const auto draw_on = [&](std::uint32_t background) {
    set_display_colors(renderer, scene.base.colormap, background);
    return draw();
  };
  Picture picture = scene.transparent ? without_background(draw_on(0x000000), draw_on(0xFFFFFF)) : draw();
  return {std::move(picture), explanation_of(explainDisplay, renderer)};
}

}  // namespace oct::app
