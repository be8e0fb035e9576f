#include "hosting/offscreen/offscreen_buffer_object.h"

#include "core/timing_mark.h"
#include "gl/trace/pass_mark.h"

namespace oct {

void OffscreenBufferObject::release() {
  detach();
  const GLuint names[] = {target_.framebuffer.get(), target_.color.get(), target_.depth.get()};
  target_.reset();
  read_back_.release();
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

void OffscreenBufferObject::discard() {
  if (target_.framebuffer && target_.color && target_.depth) {
    detach();
  } else {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
  }
  target_.reset();
  read_back_.release();
}

void OffscreenBufferObject::prepare(std::uint32_t width, std::uint32_t height) {
  const gl::PassMark mark("OffscreenBuffer::prepare");
  const auto columns = static_cast<GLsizei>(width);
  const auto rows = static_cast<GLsizei>(height);
  const bool whole = target_.framebuffer && target_.color && target_.depth;
  if (!whole || columns != width_ || rows != height_) {
    discard();
    target_.create(columns, rows);
    width_ = columns;
    height_ = rows;
  }
  glBindRenderbuffer(GL_RENDERBUFFER, 0);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target_.framebuffer.get());
  glDrawBuffer(GL_COLOR_ATTACHMENT0);  // in the frame before the client may have chosen another one
  glViewport(0, 0, width_, height_);
  record_timing_mark("before_rendering");
}

void OffscreenBufferObject::finish(void* data, gl::PixelFormat format) {
  const gl::PassMark mark("OffscreenBuffer::finish");
  if (!data) return;
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  read_back_.read(target_.framebuffer, width_, height_, format, data);
}

}  // namespace oct
