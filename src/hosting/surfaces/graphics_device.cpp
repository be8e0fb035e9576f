#include "hosting/surfaces/graphics_device.h"

#include <cstdint>

#include "core/exception.h"
#include "core/log.h"
#include "gl/context/opengl_loader.h"
#include "gl/gl.h"

namespace oct {
namespace {

// A context that cannot tell was never reset as far as anybody knows. The extension is looked at first: some
// systems have a pointer for every name.
GLenum reset_status() {
  if ((GLEW_VERSION_4_5 || GLEW_KHR_robustness) && glGetGraphicsResetStatus)
    return glGetGraphicsResetStatus();
  if (GLEW_ARB_robustness && glGetGraphicsResetStatusARB) return glGetGraphicsResetStatusARB();
  return GL_NO_ERROR;
}

const char* reset_name(GLenum status) {
  switch (status) {
    case GL_GUILTY_CONTEXT_RESET_ARB:
      return "by something this context drew";
    case GL_INNOCENT_CONTEXT_RESET_ARB:
      return "not by this context";
    default:
      return "for an unknown reason";
  }
}

}  // namespace

void log_opengl_renderer() {
  log() << "OpenGL " << gl::opengl_text(GL_VERSION) << ", renderer: " << gl::opengl_text(GL_RENDERER)
        << ", vendor: " << gl::opengl_text(GL_VENDOR);
}

bool DeviceWatch::removed() {
  if (removed_) return true;
  const GLenum status = reset_status();
  if (status != GL_NO_ERROR) log() << "OpenGL was reset " << reset_name(status) << ". ";
  removed_ = status != GL_NO_ERROR || source_.device_removed();
  return removed_;
}

void DeviceWatch::check() {
  if (removed()) throw OpenGLError(graphics_device_removed);
}

}  // namespace oct
