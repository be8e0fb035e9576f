#include "hosting/offscreen/offscreen_target.h"

#include <exception>
#include <string>
#include <utility>

#include "core/console.h"
#include "core/exception.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/trace/debugging.h"
#include "gl/trace/gpu_track.h"
#include "hosting/host/opengl_host.h"

namespace oct {

OffscreenTarget::OffscreenTarget() : host_(OpenGLHost::acquire()), context_(host_->window()) {
  context_.makeCurrent();
  gl::initGlew();
  gl::checkOpenGLVersion(3, 3);
  gl::log_opengl_messages();
}

OffscreenTarget::~OffscreenTarget() {
  try {
    close();
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

void OffscreenTarget::close() {
  if (std::exchange(closed_, true)) return;
  if (!context_.is_current()) {
    at_end_.replace(gl::CurrentContext());
  } else if (before_frame_ && !context_.is(*before_frame_)) {
    at_end_.replace(*before_frame_);
  }
  context_.makeCurrent();
  buffer_.release();
}

void OffscreenTarget::begin_frame(std::uint32_t width, std::uint32_t height) {
  // A frame that is begun anew goes back to what was current before the first attempt.
  const gl::CurrentContext before =
      before_frame_ && context_.is_current() ? *before_frame_ : gl::CurrentContext();
  gl::RestoreCurrent restore(before);
  context_.makeCurrent();
  before_frame_.reset();
  prepare(width, height);
  before_frame_ = before;
  restore.dismiss();
}

void OffscreenTarget::prepare(std::uint32_t width, std::uint32_t height) {
  try {
    buffer_.prepare(width, height);
    gl::throwOnGLError("beginOffscreenFrame");
    const GLenum status = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER);
    if (status != GL_FRAMEBUFFER_COMPLETE) {
      throw OpenGLError(std::string("The offscreen framebuffer is not complete: ") +
                        gl::framebufferStatusName(status));
    }
  } catch (...) {
    buffer_.discard();
    throw;
  }
}

void OffscreenTarget::finish_frame(void* pixels, gl::PixelFormat format) {
  if (!before_frame_) throw StateError("No offscreen frame has been begun. ");
  context_.makeCurrent();
  const gl::RestoreCurrent restore(*std::exchange(before_frame_, std::nullopt));
  const gl::ClientPack pack;
  try {
    buffer_.finish(pixels, format);
    gl::throwOnGLError("finishOffscreenFrame");
    if (pixels) gl::collect_gpu_times();
  } catch (...) {
    buffer_.discard();
    throw;
  }
}

}  // namespace oct
