#include "volume/volume_renderer.h"

#include <array>

#include <glm/gtc/type_ptr.hpp>

#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"

namespace oct {
namespace {

Viewport current_viewport() {
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  return {viewport[2], viewport[3]};
}

void offset_polygons(float factor, float units) {
  for (const GLenum kind : {GL_POLYGON_OFFSET_FILL, GL_POLYGON_OFFSET_LINE, GL_POLYGON_OFFSET_POINT})
    glEnable(kind);
  glPolygonOffset(factor, units);
}

}  // namespace

VolumeRenderer::VolumeRenderer() = default;

VolumeRenderer::~VolumeRenderer() {
  const TimingMark mark("~VolumeRenderer");
  release();
}

void VolumeRenderer::init() {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::init");
  gl::require_opengl("Failed to initialize OpenGL.");
  release();
  try {
    programs_.load_scene();
    raycaster_.create();
    programs_.load_raycasting();
    create_colormaps();
    gl::throwOnGLError("VolumeRenderer::init");
    home_ = gl::current_identity();
  } catch (...) {
    release();
    throw;
  }
}

void VolumeRenderer::create_colormaps() {
  const std::lock_guard lock(settings_mutex_);
  if (!settings_.colormaps) settings_.colormaps.emplace();
}

void VolumeRenderer::uninit() {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::uninit");
  release();
  const std::lock_guard settings_lock(settings_mutex_);
  settings_.colormaps.reset();
}

void VolumeRenderer::release() {
  home_ = gl::no_context;
  programs_.unload();
  colormaps_.release();
  background_.release();
  box_.release();
  raycaster_.release();
  elements_.release();
  surface_.release();
}

void VolumeRenderer::render(const VolumeSource& source) {
  const ObjectLock lock(this);
  const TimingMark mark("VolumeRenderer::render");
  gl::require_opengl();
  if (home_ != gl::no_context) gl::require_home(home_);
  const VolumeSettings settings = this->settings();
  const VolumeFrame frame = begin_frame(settings, source);
  if (frame.camera.viewport.width <= 0 || frame.camera.viewport.height <= 0) return;
  colormaps_.update(settings);
  clear_target();
  draw_background(frame);
  begin_depth();
  draw_box(frame);
  draw_behind_volume(frame);
  draw_volume(frame);
  draw_surface(frame);
  draw_in_front(frame);
  finish_frame();
}

VolumeFrame VolumeRenderer::begin_frame(const VolumeSettings& settings, const VolumeSource& source) {
  const TimingMark mark("render: init");
  VolumeFrame frame{settings, source, colormaps_, programs_, clip_plane_, {}, 1.0F};
  frame.camera = camera_of(settings.view, source.range.value_or(settings.range), current_viewport());
  frame.filled_end = filled_end(source.filled_fraction, source.slice_count);
  clip_plane_.update(settings.clip_plane, settings.view);
  gl::throwOnGLError("render: init");
  return frame;
}

void VolumeRenderer::clear_target() {
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  glClearDepth(0.0);
}

void VolumeRenderer::draw_background(const VolumeFrame& frame) {
  background_.set_colors(frame.settings.background_bottom, frame.settings.background_top);
  background_.draw(programs_.background);
}

// Depth starts at the eye: what is drawn first is what lies farthest back.
void VolumeRenderer::begin_depth() {
  glDepthMask(GL_TRUE);
  glClear(GL_DEPTH_BUFFER_BIT);
  glEnable(GL_DEPTH_TEST);
  glDepthFunc(GL_GEQUAL);
  offset_polygons(-1.0F, -4.0F);
}

// The far side of the box, in depth alone: what lies before it is drawn after it.
void VolumeRenderer::draw_box(const VolumeFrame& frame) {
  draw_far_side(frame);
  if (frame.volume_shown()) elements_.draw_translucent(frame, ElementPass::behind);
}

void VolumeRenderer::draw_far_side(const VolumeFrame& frame) {
  const EmptyProgram& program = programs_.empty;
  program.use();
  glUniformMatrix4fv(program.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  glColorMask(GL_FALSE, GL_FALSE, GL_FALSE, GL_FALSE);
  box_.draw(frame.box_filled() ? frame.filled_end : 1.0F);
  glColorMask(GL_TRUE, GL_TRUE, GL_TRUE, GL_TRUE);
}

void VolumeRenderer::draw_behind_volume(const VolumeFrame& frame) {
  glDepthMask(GL_FALSE);
  elements_.draw_frame(frame, ElementPass::behind);
  if (!frame.volume_shown()) return;
  if (frame.settings.rendering_mode == RenderingMode::sectional_view) {
    elements_.sectional_view.draw_outline(frame);
  } else if (clip_plane_.enabled()) {
    elements_.draw_clip_plane_border(frame, ElementPass::behind);
  }
}

void VolumeRenderer::draw_volume(const VolumeFrame& frame) {
  glDepthMask(GL_TRUE);
  glDepthFunc(GL_LEQUAL);
  if (!frame.volume_shown()) return;
  if (frame.settings.rendering_mode == RenderingMode::sectional_view) {
    draw_sections(frame);
    return;
  }
  if (clip_plane_.enabled()) {
    glPolygonOffset(0.0F, 0.0F);
    elements_.draw_clip_plane_border(frame, ElementPass::behind);
  }
  glPolygonOffset(1.0F, 4.0F);
  if (frame.settings.remove_segment) elements_.draw_removed_segment(frame, ElementPass::behind);
  raycaster_.draw(frame, box_);
  if (frame.settings.remove_segment) elements_.draw_removed_segment(frame, ElementPass::in_front);
  // The rays covered the border's part on the cut.
  if (clip_plane_.enabled()) elements_.draw_clip_plane_border(frame, ElementPass::in_front);
}

// A far side that stands towards the eye, as it does until here, hides slices that lie on it or close by.
void VolumeRenderer::draw_sections(const VolumeFrame& frame) {
  begin_depth();
  glPolygonOffset(2.0F, 8.0F);
  draw_far_side(frame);
  glDepthFunc(GL_LEQUAL);
  glPolygonOffset(1.0F, 2.0F);
  elements_.sectional_view.draw(frame);
  elements_.sectional_view.draw_outline(frame);
}

void VolumeRenderer::draw_surface(const VolumeFrame& frame) {
  if (!frame.settings.render_surface || !frame.settings.surface) return;
  if (frame.volume_shown() && frame.settings.rendering_mode == RenderingMode::raycasting) {
    // Rays left the depth of the box's near side, which would hide whatever the volume holds.
    begin_depth();
    draw_far_side(frame);
    glDepthFunc(GL_LEQUAL);
  }
  surface_.draw(frame);
}

void VolumeRenderer::draw_in_front(const VolumeFrame& frame) {
  glDepthMask(GL_TRUE);
  if (frame.volume_shown()) elements_.draw_translucent(frame, ElementPass::in_front);
  glDepthFunc(GL_LEQUAL);
  elements_.draw_frame(frame, ElementPass::in_front);
}

void VolumeRenderer::finish_frame() {
  bind_volume_texture(volume_unit::volume, GL_TEXTURE_3D, 0);
  gl::throwOnGLError("OfflineRendering::render");
}

}  // namespace oct
