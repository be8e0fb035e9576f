#include "volume/volume_renderer.h"

#include <array>
#include <utility>

#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"

namespace oct {
namespace {

Viewport current_viewport() {
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  return {viewport[2], viewport[3]};
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
    programs_.load(settings());
    create_colormaps();
    gl::throwOnGLError("VolumeRenderer::init");
    home_ = gl::current_identity();
    first_frame_ = true;
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
  const gl::DepthClamp no_holes;  // the planes would cut them into the volume
  clear_target();
  draw_background(frame);
  draw_opaque(frame);
  draw_behind_volume(frame);
  draw_rays(frame);
  // The driver works on the rays while the first labels are made, fonts are looked for and programs translated.
  if (std::exchange(first_frame_, false)) glFlush();
  draw_in_front(frame);
  finish_frame();
}

VolumeFrame VolumeRenderer::begin_frame(const VolumeSettings& settings, const VolumeSource& source) {
  const TimingMark mark("render: init");
  VolumeFrame frame{settings,    source,
                    colormaps_,  programs_,
                    clip_plane_, source.range.value_or(settings.range),
                    {},          FilledBox::of(source.filled_fraction, source.slice_count)};
  frame.camera = camera_of(settings.view, frame.range, current_viewport());
  clip_plane_.update(settings.clip_plane, settings.view, frame.box);
  gl::throwOnGLError("render: init");
  return frame;
}

void VolumeRenderer::clear_target() {
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClearDepth(1.0);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void VolumeRenderer::draw_background(const VolumeFrame& frame) {
  background_.set_colors(frame.settings.background_bottom, frame.settings.background_top);
  background_.draw(programs_.background());
}

void VolumeRenderer::draw_opaque(const VolumeFrame& frame) {
  if (frame.surface_shown()) surface_.draw(frame);
  if (frame.volume_shown() && frame.sectional()) elements_.sectional_view.draw(frame);
}

void VolumeRenderer::draw_behind_volume(const VolumeFrame& frame) {
  if (frame.volume_shown()) elements_.draw_translucent(frame, ElementPass::behind);
  elements_.draw_frame(frame, ElementPass::behind);
  if (!frame.volume_shown()) return;
  if (frame.sectional()) {
    elements_.sectional_view.draw_outline(frame);
  } else if (clip_plane_.enabled()) {
    elements_.draw_clip_plane_border(frame, ElementPass::behind);
  }
}

void VolumeRenderer::draw_rays(const VolumeFrame& frame) {
  if (!frame.volume_shown() || frame.sectional()) return;
  if (frame.settings.remove_segment) elements_.draw_removed_segment(frame, ElementPass::behind);
  raycaster_.draw(frame, box_, surface_);
  if (frame.settings.remove_segment) elements_.draw_removed_segment(frame, ElementPass::in_front);
  // The rays covered the border's part on the cut.
  if (clip_plane_.enabled()) elements_.draw_clip_plane_border(frame, ElementPass::in_front);
}

void VolumeRenderer::draw_in_front(const VolumeFrame& frame) {
  if (frame.volume_shown()) elements_.draw_translucent(frame, ElementPass::in_front);
  elements_.draw_frame(frame, ElementPass::in_front);
}

void VolumeRenderer::finish_frame() {
  bind_volume_texture(volume_unit::volume, GL_TEXTURE_3D, 0);
  gl::throwOnGLError("OfflineRendering::render");
}

}  // namespace oct
