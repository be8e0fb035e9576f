#include "support/volume_scene.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace oct::test {

Volume test_volume(int width, int height, int depth, unsigned seed) {
  Volume volume{width, height, depth, {}};
  volume.voxels.reserve(volume.slice_voxels() * static_cast<std::size_t>(depth));
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> noise(-0.05, 0.05);
  for (int w = 0; w < depth; ++w) {
    for (int v = 0; v < height; ++v) {
      for (int u = 0; u < width; ++u) {
        const double x = (v + 0.5) / height;
        const double y = (u + 0.5) / width;
        const double z = (w + 0.5) / depth;
        const double surface = 0.3 + 0.1 * std::sin(5.0 * x) * std::cos(4.0 * z);
        double value = y < surface ? 0.05 : 0.25 + 0.2 * std::sin(18.0 * (y - surface));
        const double blob = std::hypot(x - 0.65, y - 0.55, z - 0.4);
        if (blob < 0.2) value = 1.1 - 2.0 * blob;
        value += noise(random);
        volume.voxels.push_back(static_cast<float>(std::round(std::clamp(value, 0.0, 1.25) * 512.0) / 512.0));
      }
    }
  }
  return volume;
}

std::vector<std::uint32_t> grey_colors() {
  std::vector<std::uint32_t> colors;
  for (std::uint32_t grey = 0; grey < 256; ++grey)
    colors.push_back(grey | grey << 8 | grey << 16 | 0xFF000000U);
  return colors;
}

VolumeScene scene_of(Volume volume, int width, int height, double angle_x, double angle_y) {
  VolumeScene scene;
  scene.volume = std::move(volume);
  scene.viewport_width = width;
  scene.viewport_height = height;
  scene.angle_x = angle_x;
  scene.angle_y = angle_y;
  return scene;
}

std::vector<std::uint32_t> ramp_colors(int count, double opacity) {
  std::vector<std::uint32_t> colors;
  for (int i = 0; i < count; ++i) {
    const double t = count > 1 ? static_cast<double>(i) / (count - 1) : 1.0;
    const auto byte = [](double value) {
      return static_cast<std::uint32_t>(std::lround(255.0 * std::clamp(value, 0.0, 1.0)));
    };
    colors.push_back(byte(1.5 * t) | byte(t * t) << 8U | byte(0.3 + 0.5 * std::sin(6.0 * t)) << 16U |
                     byte(opacity * t * t) << 24U);
  }
  return colors;
}

std::vector<std::uint32_t> opaque_colors(int count) {
  std::vector<std::uint32_t> colors = ramp_colors(count, 1.0);
  for (std::uint32_t& color : colors) color |= 0xFF000000U;
  return colors;
}

void apply(const VolumeScene& scene, VolumeRendererHandle renderer) {
  const auto count = [](const Coloring& coloring) { return static_cast<int>(coloring.colors.size()); };
  const auto& [x, y, z] = scene.sections;
  setBorder(renderer, scene.scale_marks, scene.edges, scene.box);
  setRemoveSegment(renderer, scene.removed_segment);
  setRenderForeground(renderer, scene.foreground);
  setTranslation(renderer, scene.translation[0], scene.translation[1], scene.translation[2]);
  setZoom(renderer, scene.zoom);
  setUsePerspective(renderer, scene.perspective);
  setRenderingSlices(renderer, scene.slices);
  setVolumeLighting(renderer, scene.lighting[0], scene.lighting[1], scene.lighting[2]);
  setRayJitter(renderer, scene.jitter);
  setOpacityLength(renderer, scene.opacity_length);
  setRenderingMode(renderer, scene.sectional);
  setSectionalView(renderer, x.shown, x.position, y.shown, y.position, z.shown, z.position);
  setVolumeMode(renderer, scene.mode);
  setRendererColormap(renderer, scene.coloring.colors.data(), count(scene.coloring));
  setRendererColoringBoundaries(renderer, scene.coloring.lower, scene.coloring.upper);
  setOverlayRendererColormap(renderer, scene.overlay_coloring.colors.data(), count(scene.overlay_coloring));
  setOverlayRendererColoringBoundaries(renderer, scene.overlay_coloring.lower, scene.overlay_coloring.upper);
  setRendererSecondaryColormap(renderer, scene.secondary_coloring.colors.data(),
                               count(scene.secondary_coloring));
  setRendererSecondaryColoringBoundaries(renderer, scene.secondary_coloring.lower,
                                         scene.secondary_coloring.upper);
  setRendererSecondarySliceIndex(renderer, scene.secondary_index);
  setRenderBackground(renderer, scene.background_bottom, scene.background_top);
  setClipPlane(renderer, scene.clip, scene.clip_open, scene.clip_value);
  fixClipPlane(renderer, 0);
  setAngles(renderer, scene.angle_x, scene.angle_y);
  const HeightMap& surface = scene.surface;
  if (surface.values.empty()) return;
  setSurface(renderer, surface.width, surface.height, surface.scale, surface.values.data());
  setSurfaceDepths(renderer, scene.surface_coloring.lower, scene.surface_coloring.upper);
  setSurfaceColormap(renderer, scene.surface_coloring.colors.data(), count(scene.surface_coloring));
}

void upload(const VolumeScene& scene, OfflineRenderingHandle offline) {
  const Volume& volume = scene.volume;
  setOfflineAspectRatio(offline, scene.range[0], scene.range[1], scene.range[2]);
  allocateOfflineVolume(offline, volume.width, volume.height, volume.depth);
  if (scene.slices_uploaded < 0) {
    uploadOfflineVolume(offline, volume.voxels.data());
  } else {
    uploadOfflineSubVolume(offline, 0, scene.slices_uploaded, volume.voxels.data());
  }
  uploadOverlayOfflineVolume(offline, scene.overlay.voxels.empty() ? nullptr : scene.overlay.voxels.data());
  const Volume& secondary = scene.secondary;
  uploadOfflineSecondaryData(
      offline, secondary.height, secondary.depth, static_cast<unsigned>(secondary.width), 0,
      static_cast<unsigned>(secondary.depth), secondary.voxels.empty() ? nullptr : secondary.voxels.data());
}

VolumeStage::VolumeStage()
    : target(createOffscreenTarget()), renderer(createVolumeRenderer()), offline(createOfflineRendering()) {
  initializeVolumeRenderer(renderer);
  setOfflineRenderingRenderer(offline, renderer);
}

VolumeStage::~VolumeStage() {
  clearOfflineRendering(offline);
  uninitializeVolumeRenderer(renderer);
  deleteVolumeRenderer(renderer);
  clearOffscreenTarget(target);
}

void VolumeStage::prepare(const VolumeScene& scene) {
  apply(scene, renderer);
  upload(scene, offline);
  const bool surface = !scene.surface.values.empty();
  if (surface || !scene.volume_shown) setRenderElements(renderer, scene.volume_shown, surface);
  width_ = scene.viewport_width;
  height_ = scene.viewport_height;
  content_ = scene.content;
}

Picture VolumeStage::draw(const VolumeScene& scene) {
  prepare(scene);
  if (scene.clip_fixed) {
    // The plane takes the angles of the frame before the one that it is fixed in.
    setAngles(renderer, scene.fixed_angle_x, scene.fixed_angle_y);
    frame();
    fixClipPlane(renderer, 1);
    setAngles(renderer, scene.angle_x, scene.angle_y);
  }
  return frame();
}

Picture VolumeStage::frame() const {
  return frame(width_, height_, content_);
}

void VolumeStage::restart() const {
  uninitializeVolumeRenderer(renderer);
  initializeVolumeRenderer(renderer);
}

Picture VolumeStage::frame(int width, int height, int content) const {
  Picture picture(width, height);
  beginOffscreenFrame(target, static_cast<unsigned>(width), static_cast<unsigned>(height));
  renderOfflineVolume(offline, content);
  finishOffscreenFrame(target, picture.bytes.data());
  return picture;
}

}  // namespace oct::test
