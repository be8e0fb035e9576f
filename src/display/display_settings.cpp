// The setters of DisplayRenderer.
#include <stdexcept>
#include <utility>

#include "display/display_renderer.h"

namespace oct {

void DisplayRenderer::setMedianFilter(int medianFilter) const {
  if (medianFilter < 0 || medianFilter > 2) {
    throw std::invalid_argument("Invalid enum value specified for MedianFilter. ");
  }
}

void DisplayRenderer::setFlip(bool flip) {
  const std::lock_guard lock(settingsMutex_);
  settings_.flip = flip;
}

void DisplayRenderer::setBackgroundColor(int color) {
  const auto channel = [color](int shift) {
    return static_cast<float>((color >> shift) & 0xFF) * 0.003921569F;
  };
  const std::lock_guard lock(settingsMutex_);
  settings_.backgroundColor = {channel(16), channel(8), channel(0), 1.0F};
}

void DisplayRenderer::setColormap(const void* colors, int count) {
  setLayerColormap(0, colors, count);
}

void DisplayRenderer::setColoringBoundaries(double lower, double upper) {
  setLayerBoundaries(0, lower, upper);
}

void DisplayRenderer::setNumberOverlays(int count) {
  const std::lock_guard lock(settingsMutex_);
  for (int i = 1; i <= overlayCount; ++i) layers_[static_cast<std::size_t>(i)].settings.enabled = i <= count;
}

void DisplayRenderer::setOverlayColormap(int overlay, const void* colors, int count) {
  setLayerColormap(overlayLayer(overlay), colors, count);
}

void DisplayRenderer::setOverlayColoringBoundaries(int overlay, double lower, double upper) {
  setLayerBoundaries(overlayLayer(overlay), lower, upper);
}

void DisplayRenderer::setOverlayThreshold(double threshold) {
  const std::lock_guard lock(settingsMutex_);
  settings_.threshold = static_cast<float>(threshold);
}

std::size_t DisplayRenderer::overlayLayer(int overlay) {
  if (overlay < 0 || overlay >= overlayCount) {
    throw std::invalid_argument("The overlay index must be from 0 to 7. ");
  }
  return static_cast<std::size_t>(overlay) + 1;
}

void DisplayRenderer::setLayerColormap(std::size_t layer, const void* colors, int count) {
  Colormap colormap = copyColormap(colors, count);
  const std::lock_guard lock(settingsMutex_);
  layers_[layer].colormap = std::move(colormap);
  layers_[layer].colormapChanged = true;
}

void DisplayRenderer::setLayerBoundaries(std::size_t layer, double lower, double upper) {
  const std::lock_guard lock(settingsMutex_);
  layers_[layer].settings.lowerValue = static_cast<float>(lower);
  layers_[layer].settings.upperValue = static_cast<float>(upper);
}

}  // namespace oct
