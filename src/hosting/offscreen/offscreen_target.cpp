#include "hosting/offscreen/offscreen_target.h"

#include <exception>
#include <stdexcept>
#include <string>

#include "core/console.h"
#include "gl/opengl_error.h"
#include "gl/context/opengl_loader.h"

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
    writeError(error.what());
  }
}

void OffscreenTarget::beginFrame(std::uint32_t width, std::uint32_t height) {
  frameBegun_ = false;
  context_.makeCurrent();
  buffer_.resize(width, height);
  buffer_.prepare();
  gl::throwOnGLError("beginOffscreenFrame");
  const GLenum status = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER);
  if (status != GL_FRAMEBUFFER_COMPLETE) {
    throw std::runtime_error(std::string("The offscreen framebuffer is not complete: ") +
                             gl::framebufferStatusName(status));
  }
  frameBegun_ = true;
}

void OffscreenTarget::finishFrame(void* pixels) {
  if (!frameBegun_) throw std::runtime_error("No offscreen frame has been begun. ");
  frameBegun_ = false;
  context_.makeCurrent();
  buffer_.set_output_data(pixels);
  buffer_.finish();
  gl::throwOnGLError("finishOffscreenFrame");
}

}  // namespace oct
