// What was drawn as floats, read as it is.
#pragma once

#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "gl/gl_names.h"
#include "gl/pixel_store.h"

namespace oct::gl {

// Reads from the framebuffer, without rounding and tightly packed, as long as it lives. What the client has bound and set
// comes back.
class FloatReading {
 public:
  explicit FloatReading(const Framebuffer& framebuffer, GLenum attachment = GL_COLOR_ATTACHMENT0) {
    reset_pixel_pack();
    if (clamps_ == GL_TRUE) glClampColor(GL_CLAMP_READ_COLOR, GL_FIXED_ONLY);
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer.get());
    glReadBuffer(attachment);
  }
  ~FloatReading() {
    glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(bound_));
    if (clamps_ == GL_TRUE) glClampColor(GL_CLAMP_READ_COLOR, GL_TRUE);
  }
  FloatReading(const FloatReading&) = delete;
  FloatReading& operator=(const FloatReading&) = delete;

 private:
  const ClientPack pack_;
  const GLint bound_ = integer(GL_READ_FRAMEBUFFER_BINDING);
  const GLint clamps_ = integer(GL_CLAMP_READ_COLOR);
};

// One pixel of an attachment.
inline glm::vec4 read_floats(const Framebuffer& framebuffer, GLenum attachment, const glm::uvec2& pixel) {
  const FloatReading reading(framebuffer, attachment);
  glm::vec4 value(0.0F);
  glReadPixels(static_cast<GLint>(pixel.x), static_cast<GLint>(pixel.y), 1, 1, GL_RGBA, GL_FLOAT,
               glm::value_ptr(value));
  return value;
}

}  // namespace oct::gl
