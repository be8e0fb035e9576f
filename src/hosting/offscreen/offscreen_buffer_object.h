// A framebuffer that lives in OpenGL alone and whose pixels are read back into client memory.
#pragma once

#include <cstdint>

#include "gl/render_target.h"

namespace oct {

// Lives on the thread that owns the context.
class OffscreenBufferObject {
 public:
  // Begins a frame of this size: makes the target, whatever OpenGL says to it, unless the frame before had the same
  // size, and binds it. What is drawn on is undefined.
  void prepare(std::uint32_t width, std::uint32_t height);
  // Ends it and reads it back (BGRA, bottom row first). Null reads nothing.
  void finish(void* data);
  void discard();  // the target; the next frame makes another one. To be called after an error.
  void release();  // deletes the OpenGL objects

 private:
  void detach();

  gl::RenderTarget target_;
  GLsizei width_ = 0;
  GLsizei height_ = 0;
};

}  // namespace oct
