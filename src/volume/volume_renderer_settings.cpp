// The setters of the volume renderer.
#include <stdexcept>

#include "core/object_lock.h"
#include "volume/volume_renderer.h"

namespace oct {

glm::vec4 unpacked_color(std::uint32_t color) {
  const auto channel = [color](unsigned shift) {
    return static_cast<float>((color >> shift) & 0xFFU) / 255.0F;
  };
  return {channel(24), channel(16), channel(8), 1.0F};
}

void VolumeRenderer::set_angles(double x, double y) {
  const ObjectLock lock(this);
  settings_.view.angle_x = static_cast<float>(wrapped_angle(x));
  settings_.view.angle_y = static_cast<float>(wrapped_angle(y));
}

void VolumeRenderer::set_translation(double x, double y, double z) {
  const ObjectLock lock(this);
  settings_.view.translation = glm::vec3(glm::dvec3(x, y, z));
}

void VolumeRenderer::set_range(double axial, double lateral1, double lateral2) {
  const ObjectLock lock(this);
  settings_.range = range_of(axial, lateral1, lateral2);
}

void VolumeRenderer::set_zoom(double zoom) {
  const ObjectLock lock(this);
  settings_.view.zoom = zoom;
}

void VolumeRenderer::set_use_perspective(bool perspective) {
  const ObjectLock lock(this);
  settings_.view.perspective = perspective;
}

void VolumeRenderer::set_rendering_slices(int slices) {
  if (slices < 0) throw std::invalid_argument("The number of rendering slices must not be negative. ");
  const ObjectLock lock(this);
  settings_.slices = slices;
}

void VolumeRenderer::set_rendering_mode(int mode) {
  if (mode < 0 || mode > 1) throw std::invalid_argument("Invalid rendering mode selected.");
  const ObjectLock lock(this);
  settings_.rendering_mode = static_cast<RenderingMode>(mode);
}

void VolumeRenderer::set_volume_mode(int mode) {
  if (mode < 0 || mode > 3) throw std::invalid_argument("Invalid rendering mode selected.");
  const ObjectLock lock(this);
  settings_.volume_mode = static_cast<VolumeMode>(mode);
}

void VolumeRenderer::set_render_elements(bool volume, bool surface) {
  const ObjectLock lock(this);
  settings_.render_volume = volume;
  settings_.render_surface = surface;
}

void VolumeRenderer::set_sectional_view(const std::array<Section, 3>& sections) {
  const ObjectLock lock(this);
  elements_.sectional_view.set(sections);
}

void VolumeRenderer::set_clip_plane(bool enable, bool open_cut, float value) {
  const ObjectLock lock(this);
  clip_plane_.set(enable, open_cut, value);
}

void VolumeRenderer::fix_clip_plane(bool fix) {
  const ObjectLock lock(this);
  clip_plane_.set_fixed(fix);
}

void VolumeRenderer::set_frame(const FrameFlags& flags) {
  const ObjectLock lock(this);
  settings_.frame = flags;
}

void VolumeRenderer::set_remove_segment(bool remove) {
  const ObjectLock lock(this);
  settings_.remove_segment = remove;
}

void VolumeRenderer::set_background(std::uint32_t bottom, std::uint32_t top) {
  const ObjectLock lock(this);
  settings_.background_bottom = unpacked_color(bottom);
  settings_.background_top = unpacked_color(top);
}

void VolumeRenderer::set_foreground(std::uint32_t color) {
  const ObjectLock lock(this);
  settings_.foreground = unpacked_color(color);
}

void VolumeRenderer::set_colormap(ColormapRole role, const void* colors, int count) {
  Colormap colormap = copy_colormap(colors, count);
  const ObjectLock lock(this);
  if (VolumeColormap* const object = colormaps_.find(role)) object->set_colors(std::move(colormap));
}

void VolumeRenderer::set_coloring_boundaries(ColormapRole role, double lower, double upper) {
  const ObjectLock lock(this);
  if (VolumeColormap* const object = colormaps_.find(role)) object->set_boundaries(lower, upper);
}

void VolumeRenderer::set_secondary_slice_index(int index) {
  const ObjectLock lock(this);
  settings_.secondary_slice_index = index;
}

void VolumeRenderer::set_surface(int width, int height, double scale, const float* values) {
  const ObjectLock lock(this);
  surface_.set(width, height, scale, values);
}

void VolumeRenderer::set_surface_depths(double lower, double upper) {
  const ObjectLock lock(this);
  set_coloring_boundaries(ColormapRole::surface, surface_.on_mesh_scale(lower),
                          surface_.on_mesh_scale(upper));
}

VolumeSource VolumeRenderer::source() const {
  const ObjectLock lock(this);
  return source_;
}

void VolumeRenderer::set_source(const VolumeSource& source) {
  const ObjectLock lock(this);
  source_ = source;
}

void VolumeRenderer::clear() {
  const ObjectLock lock(this);
  source_.volume = 0;
  source_.slice_count = 0;
  ++source_.revision;  // counted on, never back: a number that came before would stand for other voxels
  settings_.render_volume = false;
  settings_.render_surface = false;
}

VolumeSettings VolumeRenderer::settings() const {
  const ObjectLock lock(this);
  return settings_;
}

}  // namespace oct
