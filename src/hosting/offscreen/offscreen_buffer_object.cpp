#include "hosting/offscreen/offscreen_buffer_object.h"

#include "core/timing_mark.h"
#include "gl/read_back.h"

namespace oct {

void OffscreenBufferObject::release() {
  detach();
  const GLuint names[] = {target_.framebuffer.get(), target_.color.get(), target_.depth.get()};
  target_.reset();
  // A second time, with names that no longer exist: OpenGL ignores them.
  gl::FramebufferKind::destroy(names[0]);
  gl::RenderbufferKind::destroy(names[1]);
  gl::RenderbufferKind::destroy(names[2]);
}

void OffscreenBufferObject::detach() {
  glBindFramebuffer(GL_FRAMEBUFFER, target_.framebuffer.get());
  if (target_.framebuffer) {
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, 0);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, 0);
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  glBindRenderbuffer(GL_RENDERBUFFER, 0);
}

// The target is made anew for every frame, so that the size is always the current one and no frame depends on
// what an earlier one left.
void OffscreenBufferObject::prepare(std::uint32_t width, std::uint32_t height) {
  const TimingMark mark("OffscreenBuffer::prepare");
  if (target_.framebuffer && target_.color && target_.depth) {
    detach();
  } else {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
  }
  target_.reset();

  width_ = static_cast<GLsizei>(width);
  height_ = static_cast<GLsizei>(height);
  target_.create(width_, height_);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);

  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target_.framebuffer.get());
  glViewport(0, 0, width_, height_);
  record_timing_mark("before_rendering");
}

void OffscreenBufferObject::finish(void* data) {
  const TimingMark mark("OffscreenBuffer::finish");
  if (!data) return;
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  gl::read_color(target_.framebuffer, width_, height_, data);
  target_.reset();
}

}  // namespace oct
