// A framebuffer that lives in OpenGL alone and whose pixels are read back into client memory.
#pragma once

#include <cstdint>

#include "gl/target/read_back.h"
#include "gl/target/render_target.h"

namespace oct {

// Lives on the thread that owns the context.
class OffscreenBufferObject {
 public:
  // Begins a frame of this size: makes the target, whatever OpenGL says to it, unless the frame before had the same
  // size, and binds it. What is drawn on is undefined.
  void prepare(std::uint32_t width, std::uint32_t height);
  // Ends it and reads it back. Null reads nothing.
  void finish(void* data, gl::PixelFormat format = gl::PixelFormat::bgra);
  void discard();  // the target; the next frame makes another one. To be called after an error.
  void release();  // deletes the OpenGL objects

 private:
  void detach();

  gl::RenderTarget target_;
  gl::ReadBack read_back_;
  GLsizei width_ = 0;
  GLsizei height_ = 0;
};

}  // namespace oct
