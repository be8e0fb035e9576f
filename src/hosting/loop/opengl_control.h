// A set of render targets with an OpenGL context of their own.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>

#include "gl/context/opengl_context.h"
#include "hosting/surfaces/hand_off_buffer.h"
#include "hosting/surfaces/surface_sharing.h"

namespace oct {

class OpenGLHost;

// A ring of three hand-off buffers that frames rotate through. Lives on one thread, that of its context.
class OpenGLControl {
 public:
  // Throws std::runtime_error "Cannot properly create an OpenGLControl." when the system gives no context or
  // no buffers within one second.
  explicit OpenGLControl(SurfaceSharing sharing);
  ~OpenGLControl();
  OpenGLControl(const OpenGLControl&) = delete;
  OpenGLControl& operator=(const OpenGLControl&) = delete;

  HandOffBuffer& current_buffer() { return *buffers_.front(); }
  void rotate_buffers();
  void render_test_image();
  void make_current();    // after functions of the client, who may have changed what is current
  void make_uncurrent();  // so that another thread can delete the control

 private:
  void create_context(SurfaceSharing sharing);

  std::shared_ptr<OpenGLHost> host_;
  std::unique_ptr<gl::OpenGLContext> context_;
  std::unique_ptr<AbstractBufferSource> source_;
  std::deque<std::unique_ptr<HandOffBuffer>> buffers_;
};

}  // namespace oct
