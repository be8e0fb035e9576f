#include "volume/volume_renderer.h"

#include <array>
#include <cmath>
#include <utility>

#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"

namespace oct {
namespace {

std::array<GLint, 4> current_viewport() {
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  return viewport;
}

std::int64_t filled_b_scans(const VolumeSource& source) {
  const auto fraction = static_cast<double>(source.filled_fraction);
  if (fraction >= 1.0) return source.extent.b_scans;
  return static_cast<std::int64_t>(std::ceil(fraction * source.slice_count));
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
  picker_.release();
  picture_.release();
  last_frame_.forget();
}

void VolumeRenderer::render(const VolumeSource& source) {
  const ObjectLock lock(this);
  const gl::PassMark mark("VolumeRenderer::render");
  try {
    draw_frame(source);
  } catch (const std::exception& error) {
    last_frame_.note_failure(error.what());
    throw;
  }
}

void VolumeRenderer::draw_frame(const VolumeSource& source) {
  gl::require_opengl();
  if (home_ != gl::no_context) gl::require_home(home_);
  const VolumeSettings settings = this->settings();
  const std::array<GLint, 4> area = current_viewport();
  const Viewport target{area[2], area[3]};
  const std::optional<PicturePart> part = target.width > 0 && target.height > 0 ? this->part() : std::nullopt;
  // Whoever asks about a frame asks about the whole picture.
  const auto wanted = std::make_shared<FrameRecord>(
      settings, source, part ? Viewport{part->width, part->height} : target, home_);
  const Range range = wanted->range();
  const VolumeFrame frame = begin_frame(
      settings, source,
      part ? camera_of(settings.view, range, *part, target) : camera_of(settings.view, range, target));
  wanted->plane = frame.cutting_plane();
  if (wanted->has_area()) {
    const std::shared_ptr<const FrameRecord> last = last_frame_.record();
    const bool again = !part && last && last->drawn == wanted->drawn;
    if (!again || !show_again(frame, area)) {
      picture_.forget();
      draw(frame);
    }
    finish_frame();
    if (source.volume_maxima) wanted->values = source.volume_maxima->greatest(filled_b_scans(source));
  }
  last_frame_.remember(wanted);
  if (wanted->has_area()) record_timing_mark("frame end");
}

// Kept the first time that a frame equals the one before, so that a view that turns does no more than draw. False where
// it is to be drawn into the target itself.
bool VolumeRenderer::show_again(const VolumeFrame& frame, const std::array<GLint, 4>& viewport) {
  if (!gl::KeptPicture::suits_target(viewport[2], viewport[3])) return false;
  const std::optional<GLenum> depth = gl::KeptPicture::depth_of_target();
  if (!depth) return false;
  try {
    if (!picture_)
      picture_.keep(
          viewport[2], viewport[3], [&] { draw(frame); }, *depth);
    gl::throwOnGLError("OfflineRendering::render");
  } catch (...) {
    picture_.release();
    throw;
  }
  clear_target();
  picture_.copy_to(viewport);
  if (glGetError() == GL_NO_ERROR) return true;
  picture_.release();  // a driver that knows another format for the target's depth
  return false;
}

void VolumeRenderer::draw(const VolumeFrame& frame) {
  colormaps_.update(frame.settings);
  const gl::DepthClamp no_holes;  // the planes would cut them into the volume
  clear_target();
  draw_background(frame);
  draw_opaque(frame);
  draw_behind_volume(frame);
  draw_rays(frame);
  // The driver works on the rays while the first labels are made, fonts are looked for and programs translated.
  if (std::exchange(first_frame_, false)) glFlush();
  draw_in_front(frame);
}

VolumeFrame VolumeRenderer::begin_frame(const VolumeSettings& settings, const VolumeSource& source,
                                        const Camera& camera) {
  const TimingMark mark("render: init");
  VolumeFrame frame{settings,    source,
                    colormaps_,  programs_,
                    clip_plane_, source.range.value_or(settings.range),
                    camera,      FilledBox::of(source.filled_fraction, source.slice_count)};
  clip_plane_.update(settings.clip_plane, settings.view, frame.box);
  gl::throwOnGLError("render: init");
  return frame;
}

void VolumeRenderer::clear_target() {
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void VolumeRenderer::draw_background(const VolumeFrame& frame) {
  const gl::PassMark mark("VolumeRenderer::render_background");
  background_.set_colors(frame.settings.background_bottom, frame.settings.background_top);
  background_.draw(programs_.background(), frame.camera.to_target);
}

void VolumeRenderer::draw_opaque(const VolumeFrame& frame) {
  if (frame.surface_shown()) surface_.draw(frame);
  if (frame.volume_shown() && frame.sectional()) elements_.sectional_view.draw(frame);
}

void VolumeRenderer::draw_behind_volume(const VolumeFrame& frame) {
  elements_.draw_behind(frame);
  if (frame.volume_shown() && frame.sectional()) elements_.sectional_view.draw_outline(frame);
}

void VolumeRenderer::draw_rays(const VolumeFrame& frame) {
  if (frame.volume_shown() && !frame.sectional()) raycaster_.draw(frame, box_, surface_);
}

void VolumeRenderer::draw_in_front(const VolumeFrame& frame) {
  elements_.draw_in_front(frame);
}

void VolumeRenderer::finish_frame() {
  gl::throwOnGLError("OfflineRendering::render");
}

}  // namespace oct
