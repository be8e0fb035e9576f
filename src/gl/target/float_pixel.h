// What was drawn as floats, read as it is.
#pragma once

#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "gl/gl_names.h"
#include "gl/target/reading.h"

namespace oct::gl {

// Reading without rounding to what a colour may be.
class FloatReading {
 public:
  explicit FloatReading(const Framebuffer& framebuffer, GLenum attachment = GL_COLOR_ATTACHMENT0)
      : reading_(framebuffer, attachment) {
    if (clamps_ == GL_TRUE) glClampColor(GL_CLAMP_READ_COLOR, GL_FIXED_ONLY);
  }
  ~FloatReading() {
    if (clamps_ == GL_TRUE) glClampColor(GL_CLAMP_READ_COLOR, GL_TRUE);
  }
  FloatReading(const FloatReading&) = delete;
  FloatReading& operator=(const FloatReading&) = delete;

 private:
  const Reading reading_;
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
