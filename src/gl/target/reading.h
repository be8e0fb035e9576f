// The framebuffer that is read from, for a while.
#pragma once

#include "gl/gl_names.h"
#include "gl/pixel_store.h"

namespace oct::gl {

// Reads one attachment of the framebuffer, tightly packed into client memory, as long as it lives. What the client has
// bound and set comes back.
class Reading {
 public:
  explicit Reading(const Framebuffer& framebuffer, GLenum attachment = GL_COLOR_ATTACHMENT0) {
    reset_pixel_pack();
    glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer.get());
    glReadBuffer(attachment);
  }
  ~Reading() { glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(bound_)); }
  Reading(const Reading&) = delete;
  Reading& operator=(const Reading&) = delete;

 private:
  const ClientPack pack_;
  const GLint bound_ = integer(GL_READ_FRAMEBUFFER_BINDING);
};

}  // namespace oct::gl
