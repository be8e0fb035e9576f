#include "support/volume_scene.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <utility>

namespace oct::test {

Volume testVolume(int width, int height, int depth, unsigned seed) {
  Volume volume{width, height, depth, {}};
  volume.voxels.reserve(volume.sliceVoxels() * static_cast<std::size_t>(depth));
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

VolumeScene sceneOf(Volume volume, int width, int height, double angleX, double angleY) {
  VolumeScene scene;
  scene.volume = std::move(volume);
  scene.viewportWidth = width;
  scene.viewportHeight = height;
  scene.angleX = angleX;
  scene.angleY = angleY;
  return scene;
}

std::vector<std::uint32_t> rampColors(int count, double opacity) {
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

std::vector<std::uint32_t> opaqueColors(int count) {
  std::vector<std::uint32_t> colors = rampColors(count, 1.0);
  for (std::uint32_t& color : colors) color |= 0xFF000000U;
  return colors;
}

void apply(const VolumeScene& scene, VolumeRendererHandle renderer) {
  const auto count = [](const Coloring& coloring) { return static_cast<int>(coloring.colors.size()); };
  const auto& [x, y, z] = scene.sections;
  setBorder(renderer, scene.scaleMarks, scene.edges, scene.box);
  setRemoveSegment(renderer, scene.removedSegment);
  setRenderForeground(renderer, scene.foreground);
  setTranslation(renderer, scene.translation[0], scene.translation[1], scene.translation[2]);
  setZoom(renderer, scene.zoom);
  setUsePerspective(renderer, scene.perspective);
  setRenderingSlices(renderer, scene.slices);
  setRenderingMode(renderer, scene.sectional);
  setSectionalView(renderer, x.shown, x.position, y.shown, y.position, z.shown, z.position);
  setVolumeMode(renderer, scene.mode);
  setRendererColormap(renderer, scene.coloring.colors.data(), count(scene.coloring));
  setRendererColoringBoundaries(renderer, scene.coloring.lower, scene.coloring.upper);
  setOverlayRendererColormap(renderer, scene.overlayColoring.colors.data(), count(scene.overlayColoring));
  setOverlayRendererColoringBoundaries(renderer, scene.overlayColoring.lower, scene.overlayColoring.upper);
  setRendererSecondaryColormap(renderer, scene.secondaryColoring.colors.data(),
                               count(scene.secondaryColoring));
  setRendererSecondaryColoringBoundaries(renderer, scene.secondaryColoring.lower,
                                         scene.secondaryColoring.upper);
  setRendererSecondarySliceIndex(renderer, scene.secondaryIndex);
  setRenderBackground(renderer, scene.backgroundBottom, scene.backgroundTop);
  setClipPlane(renderer, scene.clip, scene.clipOpen, scene.clipValue);
  fixClipPlane(renderer, 0);
  setAngles(renderer, scene.angleX, scene.angleY);
  const HeightMap& surface = scene.surface;
  if (surface.values.empty()) return;
  setSurface(renderer, surface.width, surface.height, surface.scale, surface.values.data());
  setSurfaceDepths(renderer, scene.surfaceColoring.lower, scene.surfaceColoring.upper);
  setSurfaceColormap(renderer, scene.surfaceColoring.colors.data(), count(scene.surfaceColoring));
}

void upload(const VolumeScene& scene, OfflineRenderingHandle offline) {
  const Volume& volume = scene.volume;
  setOfflineAspectRatio(offline, scene.range[0], scene.range[1], scene.range[2]);
  allocateOfflineVolume(offline, volume.width, volume.height, volume.depth);
  if (scene.slicesUploaded < 0) {
    uploadOfflineVolume(offline, volume.voxels.data());
  } else {
    uploadOfflineSubVolume(offline, 0, scene.slicesUploaded, volume.voxels.data());
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
  if (surface || !scene.volumeShown) setRenderElements(renderer, scene.volumeShown, surface);
  width_ = scene.viewportWidth;
  height_ = scene.viewportHeight;
  content_ = scene.content;
}

Picture VolumeStage::draw(const VolumeScene& scene) {
  prepare(scene);
  if (scene.clipFixed) {
    // The plane takes the angles of the frame before the one that it is fixed in.
    setAngles(renderer, scene.fixedAngleX, scene.fixedAngleY);
    frame();
    fixClipPlane(renderer, 1);
    setAngles(renderer, scene.angleX, scene.angleY);
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
