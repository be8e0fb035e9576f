// The setters of DisplayRenderer.
#include <stdexcept>
#include <utility>

#include "display/display_renderer.h"

namespace oct {

void DisplayRenderer::set_median_filter(int median_filter) const {
  if (median_filter < 0 || median_filter > 2) {
    throw std::invalid_argument("Invalid enum value specified for MedianFilter. ");
  }
}

void DisplayRenderer::set_blur(bool first, bool second) {
  const std::lock_guard lock(settings_mutex_);
  settings_.filters.first_blur = first;
  settings_.filters.second_blur = second;
}

void DisplayRenderer::set_pepper_filter(bool enabled) {
  const std::lock_guard lock(settings_mutex_);
  settings_.filters.pepper = enabled;
}

void DisplayRenderer::set_flip(bool flip) {
  const std::lock_guard lock(settings_mutex_);
  settings_.flip = flip;
}

void DisplayRenderer::set_part(std::optional<PicturePart> part) {
  const std::lock_guard lock(settings_mutex_);
  settings_.part = part;
}

void DisplayRenderer::set_background_color(int color) {
  const auto channel = [color](int shift) {
    return static_cast<float>((color >> shift) & 0xFF) * 0.003921569F;
  };
  const std::lock_guard lock(settings_mutex_);
  settings_.backgroundColor = {channel(16), channel(8), channel(0), 1.0F};
}

void DisplayRenderer::set_colormap(const void* colors, int count) {
  set_layer_colormap(0, colors, count);
}

void DisplayRenderer::set_coloring_boundaries(double lower, double upper) {
  set_layer_boundaries(0, lower, upper);
}

void DisplayRenderer::set_number_overlays(int count) {
  const std::lock_guard lock(settings_mutex_);
  for (int i = 1; i <= overlay_count; ++i) layers_[static_cast<std::size_t>(i)].settings.enabled = i <= count;
}

void DisplayRenderer::set_overlay_colormap(int overlay, const void* colors, int count) {
  set_layer_colormap(overlay_layer(overlay), colors, count);
}

void DisplayRenderer::set_overlay_coloring_boundaries(int overlay, double lower, double upper) {
  set_layer_boundaries(overlay_layer(overlay), lower, upper);
}

void DisplayRenderer::set_overlay_threshold(double threshold) {
  const std::lock_guard lock(settings_mutex_);
  settings_.threshold = static_cast<float>(threshold);
}

std::size_t DisplayRenderer::overlay_layer(int overlay) {
  if (overlay < 0 || overlay >= overlay_count) {
    throw std::invalid_argument("The overlay index must be from 0 to 7. ");
  }
  return static_cast<std::size_t>(overlay) + 1;
}

void DisplayRenderer::set_layer_colormap(std::size_t layer, const void* colors, int count) {
  Colormap colormap = copy_colormap(colors, count);
  const std::lock_guard lock(settings_mutex_);
  layers_[layer].colormap.set(std::move(colormap));
}

void DisplayRenderer::set_layer_boundaries(std::size_t layer, double lower, double upper) {
  const std::lock_guard lock(settings_mutex_);
  layers_[layer].settings.lowerValue = static_cast<float>(lower);
  layers_[layer].settings.upperValue = static_cast<float>(upper);
}

}  // namespace oct
