// Pixels of a framebuffer, read back.
#pragma once

#include "gl/gl_names.h"
#include "gl/pixel_store.h"

namespace oct::gl {

// The first colour attachment from its lower left corner on: tightly packed BGRA bytes, bottom row first,
// into client memory or, with a pack buffer bound, to an offset in that.
inline void read_color(const Framebuffer& framebuffer, GLsizei width, GLsizei height, void* destination) {
  reset_pixel_pack();
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.get());
  glReadBuffer(GL_COLOR_ATTACHMENT0);
  glReadPixels(0, 0, width, height, GL_BGRA, GL_UNSIGNED_BYTE, destination);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

}  // namespace oct::gl
