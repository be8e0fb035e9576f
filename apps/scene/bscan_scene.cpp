#include "scene/bscan_scene.h"

#include <limits>
#include <utility>

#include "client/explanation.h"
#include "client/renderers.h"
#include "scene/offscreen_picture.h"

namespace oct::app {
namespace {

void set_image(void (*setter)(DisplayRenderingHandle, int, int, const float*),
               DisplayRenderingHandle renderer, const Image& image) {
  checked(setter, renderer, static_cast<int>(image.depth), static_cast<int>(image.ascans),
          image.samples.data());
}

void set_base(DisplayRenderingHandle renderer, const Layer& layer) {
  set_image(setDisplayData, renderer, layer.image);
  checked(setDisplayColoringBoundaries, renderer, layer.range.lower, layer.range.upper);
}

// The library draws the base opaque.
void set_background(DisplayRenderingHandle renderer, Colormap colors, std::uint32_t background) {
  flatten_onto(colors, background);
  checked(setDisplayColormap, renderer, colors.data(), static_cast<int>(colors.size()));
  checked(setBackgroundColor, renderer, static_cast<int>(background));
}

void set_overlay(DisplayRenderingHandle renderer, const Overlay& overlay) {
  const Layer& layer = overlay.layer;
  set_image(setDisplayOverlayData, renderer, layer.image);
  checked(setDisplayOverlayColormap, renderer, 0, layer.colormap.data(),
          static_cast<int>(layer.colormap.size()));
  checked(setDisplayOveralyColoringBoundaries, renderer, 0, layer.range.lower, layer.range.upper);
  // The library's own start, 0, would hide the overlay wherever the base is in negative decibels.
  const double everywhere = std::numeric_limits<float>::lowest();
  checked(setDisplayOveralyThreshold, renderer, overlay.threshold.value_or(everywhere));
  checked(setDisplayNumberOverlays, renderer, 0, 1);
}

}  // namespace

void set_scene(DisplayRenderingHandle renderer, const BscanScene& scene) {
  set_base(renderer, scene.base);
  set_background(renderer, scene.base.colormap, scene.background);
  if (scene.overlay) set_overlay(renderer, *scene.overlay);
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
    set_background(renderer, scene.base.colormap, background);
    return draw();
  };
  Picture picture = scene.transparent ? without_background(draw_on(0x000000), draw_on(0xFFFFFF)) : draw();
  return {std::move(picture), explanation_of(explainDisplay, renderer)};
}

}  // namespace oct::app
