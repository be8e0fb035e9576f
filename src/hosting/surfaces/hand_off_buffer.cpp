#include "hosting/surfaces/hand_off_buffer.h"

#include "core/exception.h"
#include "core/log.h"
#include "gl/opengl_error.h"

namespace oct {

void render_target_failed(const char* reason, ErrorKind kind) {
  log() << "An error occured when creating render target: " << reason;
  throw Exception(kind, "Could not generate render target. ");
}

void check_render_target() {
  const GLenum status = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER);
  const GLenum error = glGetError();
  if (error != GL_NO_ERROR) render_target_failed(gl::error_text(error), gl::kind_of(error));
  if (status != GL_FRAMEBUFFER_COMPLETE) render_target_failed(gl::framebufferStatusName(status));
}

void rendering_took_too_long() {
  throw OpenGLError("Rendering could not finish within one second. ");
}

}  // namespace oct
