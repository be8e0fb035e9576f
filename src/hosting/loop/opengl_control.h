// A set of render targets with an OpenGL context of their own.
#pragma once

#include <cstdint>
#include <deque>
#include <memory>
#include <optional>

#include "gl/context/current_context.h"
#include "gl/context/opengl_context.h"
#include "hosting/surfaces/graphics_device.h"
#include "hosting/surfaces/hand_off_buffer.h"
#include "hosting/surfaces/surface_sharing.h"

namespace oct {

class OpenGLHost;

// A ring of three hand-off buffers that frames rotate through. Lives on one thread, that of its context.
class OpenGLControl {
 public:
  // Throws OpenGLError "Cannot properly create an OpenGLControl." when the system gives no context or
  // no buffers within one second.
  // The control's context is current afterwards; after a failure, what was current before.
  explicit OpenGLControl(const SurfaceType& surfaces);
  // Leaves current what is current; in place of the control's own context, what was before the construction.
  ~OpenGLControl();
  OpenGLControl(const OpenGLControl&) = delete;
  OpenGLControl& operator=(const OpenGLControl&) = delete;

  DeviceWatch& device() { return *device_; }
  HandOffBuffer& current_buffer() { return *buffers_.front(); }
  void rotate_buffers();
  void render_test_image();
  void make_current();    // after functions of the client, who may have changed what is current
  void make_uncurrent();  // when nothing is drawn any more

 private:
  void create_context(SurfaceSharing sharing);

  gl::RestoreCurrent at_end_;  // of everything below
  std::shared_ptr<OpenGLHost> host_;
  std::unique_ptr<gl::OpenGLContext> context_;
  std::unique_ptr<AbstractBufferSource> source_;
  std::optional<DeviceWatch> device_;
  std::deque<std::unique_ptr<HandOffBuffer>> buffers_;
};

}  // namespace oct
