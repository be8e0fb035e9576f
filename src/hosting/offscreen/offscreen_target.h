// A context on the host's hidden window and an offscreen buffer, for clients that only want pixels.
#pragma once

#include <memory>
#include <optional>

#include "gl/context/current_context.h"
#include "gl/context/opengl_context.h"
#include "hosting/offscreen/offscreen_buffer_object.h"

namespace oct {

class OpenGLHost;

// Lives on the thread that made it; the context is current there from construction on, until the client makes
// another one current. Every other operation leaves current what was current before; for that a frame, from its
// begin to its end, is one operation.
class OffscreenTarget {
 public:
  OffscreenTarget();
  ~OffscreenTarget();  // where its own context is current, that of before the construction is afterwards
  OffscreenTarget(const OffscreenTarget&) = delete;
  OffscreenTarget& operator=(const OffscreenTarget&) = delete;

  void begin_frame(std::uint32_t width, std::uint32_t height);
  void finish_frame(void* pixels, gl::PixelFormat format = gl::PixelFormat::bgra);  // null reads nothing

  // Deletes the OpenGL objects, as the destructor does otherwise, and throws what goes wrong. Nothing but the
  // destructor may follow.
  void close();

 private:
  void prepare(std::uint32_t width, std::uint32_t height);

  gl::RestoreCurrent at_end_;  // of everything below
  const std::shared_ptr<OpenGLHost> host_;
  gl::OpenGLContext context_;
  OffscreenBufferObject buffer_;
  std::optional<gl::CurrentContext> before_frame_;  // while a frame is begun
  bool closed_ = false;
};

}  // namespace oct
