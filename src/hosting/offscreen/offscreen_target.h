// A hidden window, a context and an offscreen buffer, for clients that only want pixels.
#pragma once

#include "gl/context/opengl_context.h"
#include "gl/context/opengl_window.h"
#include "hosting/offscreen/offscreen_buffer_object.h"

namespace oct {

// Lives on the thread that made it; the context is current there from construction on.
class OffscreenTarget {
 public:
  OffscreenTarget();
  ~OffscreenTarget();
  OffscreenTarget(const OffscreenTarget&) = delete;
  OffscreenTarget& operator=(const OffscreenTarget&) = delete;

  void begin_frame(std::uint32_t width, std::uint32_t height);
  void finish_frame(void* pixels);  // null reads nothing

 private:
  gl::OpenGLWindow window_;
  gl::OpenGLContext context_;
  OffscreenBufferObject buffer_;
  bool frame_begun_ = false;
};

}  // namespace oct
