#include "hosting/offscreen/offscreen_target.h"

#include <exception>
#include <stdexcept>
#include <string>

#include "core/console.h"
#include "gl/client_state.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"

namespace oct {

OffscreenTarget::OffscreenTarget() : context_(window_) {
  context_.makeCurrent();
  gl::initGlew();
  gl::checkOpenGLVersion(3, 3);
}

OffscreenTarget::~OffscreenTarget() {
  try {
    context_.makeCurrent();
    buffer_.release();
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

void OffscreenTarget::begin_frame(std::uint32_t width, std::uint32_t height) {
  frame_begun_ = false;
  context_.makeCurrent();
  buffer_.prepare(width, height);
  gl::throwOnGLError("beginOffscreenFrame");
  const GLenum status = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER);
  if (status != GL_FRAMEBUFFER_COMPLETE) {
    throw std::runtime_error(std::string("The offscreen framebuffer is not complete: ") +
                             gl::framebufferStatusName(status));
  }
  frame_begun_ = true;
}

void OffscreenTarget::finish_frame(void* pixels) {
  if (!frame_begun_) throw std::runtime_error("No offscreen frame has been begun. ");
  frame_begun_ = false;
  context_.makeCurrent();
  const gl::TransferState transfer;
  buffer_.finish(pixels);
  gl::throwOnGLError("finishOffscreenFrame");
}

}  // namespace oct
