// The setters of the volume renderer.
#include <cmath>
#include <memory>
#include <stdexcept>
#include <utility>

#include "volume/volume_renderer.h"

namespace oct {

glm::vec4 unpacked_color(std::uint32_t color) {
  const auto channel = [color](unsigned shift) {
    return static_cast<float>((color >> shift) & 0xFFU) / 255.0F;
  };
  return {channel(24), channel(16), channel(8), 1.0F};
}

void VolumeRenderer::set_angles(double x, double y) {
  const std::lock_guard lock(settings_mutex_);
  settings_.view.angle_x = static_cast<float>(wrapped_angle(x));
  settings_.view.angle_y = static_cast<float>(wrapped_angle(y));
}

void VolumeRenderer::set_translation(double x, double y, double z) {
  const std::lock_guard lock(settings_mutex_);
  settings_.view.translation = glm::vec3(glm::dvec3(x, y, z));
}

void VolumeRenderer::set_range(double axial, double lateral1, double lateral2) {
  const std::lock_guard lock(settings_mutex_);
  settings_.range = range_of(axial, lateral1, lateral2);
}

void VolumeRenderer::set_zoom(double zoom) {
  const std::lock_guard lock(settings_mutex_);
  settings_.view.zoom = zoom;
}

void VolumeRenderer::set_use_perspective(bool perspective) {
  const std::lock_guard lock(settings_mutex_);
  settings_.view.perspective = perspective;
}

void VolumeRenderer::set_rendering_slices(int slices) {
  if (slices < 0) throw std::invalid_argument("The number of rendering slices must not be negative. ");
  const std::lock_guard lock(settings_mutex_);
  settings_.slices = slices;
}

void VolumeRenderer::set_rendering_mode(int mode) {
  if (mode < 0 || mode > 1) throw std::invalid_argument("Invalid rendering mode selected.");
  const std::lock_guard lock(settings_mutex_);
  settings_.rendering_mode = static_cast<RenderingMode>(mode);
}

void VolumeRenderer::set_volume_mode(int mode) {
  if (mode < 0 || mode > 3) throw std::invalid_argument("Invalid rendering mode selected.");
  const std::lock_guard lock(settings_mutex_);
  settings_.volume_mode = static_cast<VolumeMode>(mode);
}

void VolumeRenderer::set_render_elements(bool volume, bool surface) {
  const std::lock_guard lock(settings_mutex_);
  settings_.render_volume = volume;
  settings_.render_surface = surface;
}

void VolumeRenderer::set_lighting(double ambient, double diffuse, double specular) {
  for (const double factor : {ambient, diffuse, specular}) {
    if (!(factor >= 0.0 && factor <= 1e6)) {
      throw std::invalid_argument("The factors of the lighting must be numbers from 0 to 1000000. ");
    }
  }
  const std::lock_guard lock(settings_mutex_);
  settings_.lighting = {static_cast<float>(ambient), static_cast<float>(diffuse),
                        static_cast<float>(specular)};
}

void VolumeRenderer::set_ray_jitter(bool jitter) {
  const std::lock_guard lock(settings_mutex_);
  settings_.ray_jitter = jitter;
}

void VolumeRenderer::set_opacity_length(double millimetres) {
  if (!(millimetres >= 0.0 && std::isfinite(millimetres)))
    throw std::invalid_argument("The opacity length must be a finite number of millimetres, 0 or more. ");
  const std::lock_guard lock(settings_mutex_);
  settings_.opacity_length = millimetres;
}

void VolumeRenderer::set_sectional_view(const Sections& sections) {
  for (const Section& section : sections) {
    if (!(section.position >= 0.0F && section.position <= 1.0F)) {
      throw std::invalid_argument(
          "Slice positions of sectional view are out of range. Values must be in range from 0.0 to 1.0. ");
    }
  }
  const std::lock_guard lock(settings_mutex_);
  settings_.sections = sections;
}

void VolumeRenderer::set_clip_plane(bool enable, bool open_cut, float value) {
  const std::lock_guard lock(settings_mutex_);
  settings_.clip_plane.enabled = enable;
  settings_.clip_plane.open_cut = open_cut;
  settings_.clip_plane.value = value;
}

void VolumeRenderer::fix_clip_plane(bool fix) {
  const std::lock_guard lock(settings_mutex_);
  settings_.clip_plane.fixed = fix;
}

void VolumeRenderer::set_frame(const FrameFlags& flags) {
  const std::lock_guard lock(settings_mutex_);
  settings_.frame = flags;
}

void VolumeRenderer::set_remove_segment(bool remove) {
  const std::lock_guard lock(settings_mutex_);
  settings_.remove_segment = remove;
}

void VolumeRenderer::set_background(std::uint32_t bottom, std::uint32_t top) {
  const std::lock_guard lock(settings_mutex_);
  settings_.background_bottom = unpacked_color(bottom);
  settings_.background_top = unpacked_color(top);
}

void VolumeRenderer::set_foreground(std::uint32_t color) {
  const std::lock_guard lock(settings_mutex_);
  settings_.foreground = unpacked_color(color);
}

void VolumeRenderer::set_colormap(ColormapRole role, const void* colors, int count) {
  Colormap copy = copy_colormap(colors, count);
  const std::lock_guard lock(settings_mutex_);
  if (ColormapSettings* const object = find_colormap(role)) object->colors.set(std::move(copy));
}

void VolumeRenderer::set_coloring_boundaries(ColormapRole role, double lower, double upper) {
  const std::lock_guard lock(settings_mutex_);
  set_boundaries(role, lower, upper);
}

void VolumeRenderer::set_boundaries(ColormapRole role, double lower, double upper) {
  if (ColormapSettings* const object = find_colormap(role)) {
    object->lower = static_cast<float>(lower);
    object->upper = static_cast<float>(upper);
  }
}

void VolumeRenderer::set_secondary_slice_index(int index) {
  const std::lock_guard lock(settings_mutex_);
  settings_.secondary_slice_index = index;
}

void VolumeRenderer::set_surface(int width, int height, double scale, const float* values) {
  auto mesh = std::make_shared<const SurfaceMesh>(surface_mesh(width, height, scale, values));
  const std::lock_guard lock(settings_mutex_);
  settings_.surface.swap(mesh);  // the one before goes after the lock
  if (scale != 0.0) settings_.surface_scale = scale;
}

void VolumeRenderer::set_surface_depths(double lower, double upper) {
  const std::lock_guard lock(settings_mutex_);
  set_boundaries(ColormapRole::surface, on_mesh_scale(lower, settings_.surface_scale),
                 on_mesh_scale(upper, settings_.surface_scale));
}

ColormapSettings* VolumeRenderer::find_colormap(ColormapRole role) {
  return settings_.colormaps ? &(*settings_.colormaps)[static_cast<std::size_t>(role)] : nullptr;
}

void VolumeRenderer::clear() {
  const std::lock_guard lock(settings_mutex_);
  settings_.render_volume = false;
  settings_.render_surface = false;
}

void VolumeRenderer::set_part(std::optional<PicturePart> part) {
  const std::lock_guard lock(settings_mutex_);
  part_ = part;
}

std::optional<PicturePart> VolumeRenderer::part() const {
  const std::lock_guard lock(settings_mutex_);
  return part_;
}

VolumeSettings VolumeRenderer::settings() const {
  const std::lock_guard lock(settings_mutex_);
  return settings_;
}

}  // namespace oct
