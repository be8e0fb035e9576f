// A pixel that was drawn as floats, as it is.
#pragma once

#include <glm/glm.hpp>
#include <glm/gtc/type_ptr.hpp>

#include "gl/gl_names.h"
#include "gl/pixel_store.h"

namespace oct::gl {

// One pixel of an attachment of floats, as it is. What the client has bound and set stays.
inline glm::vec4 read_floats(const Framebuffer& framebuffer, GLenum attachment, const glm::uvec2& pixel) {
  const ClientPack pack;
  reset_pixel_pack();
  GLint bound = 0;
  GLint clamps = 0;
  glGetIntegerv(GL_READ_FRAMEBUFFER_BINDING, &bound);
  glGetIntegerv(GL_CLAMP_READ_COLOR, &clamps);
  if (clamps == GL_TRUE) glClampColor(GL_CLAMP_READ_COLOR, GL_FIXED_ONLY);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer.get());
  glReadBuffer(attachment);
  glm::vec4 value(0.0F);
  glReadPixels(static_cast<GLint>(pixel.x), static_cast<GLint>(pixel.y), 1, 1, GL_RGBA, GL_FLOAT,
               glm::value_ptr(value));
  glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(bound));
  if (clamps == GL_TRUE) glClampColor(GL_CLAMP_READ_COLOR, GL_TRUE);
  return value;
}

}  // namespace oct::gl
