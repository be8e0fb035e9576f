// A set of render targets with an OpenGL context of their own.
#pragma once

#include <atomic>
#include <cstdint>
#include <deque>
#include <memory>

#include "gl/context/current_context.h"
#include "gl/context/opengl_context.h"
#include "hosting/offscreen/offscreen_buffer_object.h"
#include "hosting/surfaces/hand_off_buffer.h"
#include "hosting/surfaces/surface_sharing.h"

namespace oct {

class OpenGLHost;

// A ring of three hand-off buffers that frames rotate through, and one offscreen buffer for snapshots. Lives
// on one thread, that of its context; only what concerns snapshots may run on others.
class OpenGLControl {
 public:
  // Throws std::runtime_error "Cannot properly create an OpenGLControl." when the system gives no context or
  // no buffers within one second.
  // The control's context is current afterwards; after a failure, what was current before.
  explicit OpenGLControl(SurfaceSharing sharing);
  // Leaves current what is current; in place of the control's own context, what was before the construction.
  ~OpenGLControl();
  OpenGLControl(const OpenGLControl&) = delete;
  OpenGLControl& operator=(const OpenGLControl&) = delete;

  HandOffBuffer& current_buffer() { return *buffers_.front(); }
  void rotate_buffers();
  void render_test_image();
  void make_uncurrent();  // so that another thread can delete the control

  void snapshot(std::uint32_t width, std::uint32_t height, void* data);
  bool wait_for_snapshot();  // whether it was drawn; returns at once when none is pending
  void cancel_snapshot();    // no frame will come any more; lets waiters go

  // The target of the next frame while a snapshot is pending, else null.
  OffscreenBufferObject* pending_snapshot() { return snapshot_pending_ ? &snapshot_buffer_ : nullptr; }

 private:
  void create_context(SurfaceSharing sharing);

  gl::RestoreCurrent at_end_;  // of everything below
  std::shared_ptr<OpenGLHost> host_;
  std::unique_ptr<gl::OpenGLContext> context_;
  std::unique_ptr<AbstractBufferSource> source_;
  std::deque<std::unique_ptr<HandOffBuffer>> buffers_;
  OffscreenBufferObject snapshot_buffer_;
  std::atomic<bool> snapshot_pending_{false};
};

}  // namespace oct
