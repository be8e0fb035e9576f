// Pixel transfer settings of the current context.
#pragma once

#include "gl/gl.h"

namespace oct::gl {

// Makes uploads read tightly packed client memory: a client's context may carry other settings, or a buffer
// that would turn the pointer into an offset.
inline void reset_pixel_unpack() {
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  glPixelStorei(GL_UNPACK_SWAP_BYTES, GL_FALSE);
  glPixelStorei(GL_UNPACK_ALIGNMENT, 4);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 0);
  glPixelStorei(GL_UNPACK_SKIP_ROWS, 0);
  glPixelStorei(GL_UNPACK_SKIP_PIXELS, 0);
  glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 0);
  glPixelStorei(GL_UNPACK_SKIP_IMAGES, 0);
}

// Makes read-backs write tightly packed rows. The pack buffer is the caller's to choose.
inline void reset_pixel_pack() {
  glPixelStorei(GL_PACK_SWAP_BYTES, GL_FALSE);
  glPixelStorei(GL_PACK_ALIGNMENT, 4);
  glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  glPixelStorei(GL_PACK_SKIP_ROWS, 0);
  glPixelStorei(GL_PACK_SKIP_PIXELS, 0);
}

}  // namespace oct::gl
