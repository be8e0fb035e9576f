#include "hosting/surfaces/host_buffer_object.h"

#include "core/exception.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "gl/opengl_error.h"
#include "gl/trace/debugging.h"
#include "gl/trace/pass_mark.h"

namespace oct {

HostBufferObject::~HostBufferObject() {
  const TimingMark mark("~HostBufferObject");
  release();
}

void HostBufferObject::release() {
  unmap();
  fence_.reset();
  finished_ = false;
  target_.reset();
  read_back_.release();
  pixels_.reset();
}

void HostBufferObject::resize(std::uint32_t width, std::uint32_t height) {
  const gl::PassMark mark("host_buffer_resize");
  release();
  // Whatever fails below, the buffer has no size, so that the next frame repairs it.
  surface_ = {};

  gl::discard_gl_errors();  // those of the client's callback are not ours
  target_.create(static_cast<GLsizei>(width), static_cast<GLsizei>(height));
  check_render_target();
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  pixels_ = gl::Buffer::create();
  const auto size = static_cast<GLsizeiptr>(width) * static_cast<GLsizeiptr>(height) * 4;
  glBindBuffer(GL_PIXEL_PACK_BUFFER, pixels_.get());
  glBufferData(GL_PIXEL_PACK_BUFFER, size, nullptr, GL_STREAM_READ);
  gl::label(pixels_, "frame on its way");
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  const GLenum error = glGetError();
  if (error != GL_NO_ERROR) render_target_failed(gl::error_text(error), gl::kind_of(error));
  surface_ = {width, height, width * 4, nullptr};
}

void HostBufferObject::prepare(std::int32_t request) {
  unmap();
  fence_.reset();
  finished_ = false;
  glBindFramebuffer(GL_FRAMEBUFFER, target_.framebuffer.get());
  glViewport(0, 0, columns(), rows());
  begin(request);
}

void HostBufferObject::finish() {
  const gl::PassMark mark("HostBufferObject: finish");
  gl::discard_gl_errors();
  glBindBuffer(GL_PIXEL_PACK_BUFFER, pixels_.get());
  read_back_.read(target_.framebuffer, columns(), rows(), format_, nullptr);
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  gl::throwOnGLError("the read-back of a frame");
  fence_.insert();
  if (fence_) {
    glFlush();
  } else {
    // The frame arrives all the same, later than it could.
    log() << "OpenGL gave no fence; the rendering thread waits for the frame. ";
    gl::discard_gl_errors();
    glFinish();
  }
  finished_ = true;
}

bool HostBufferObject::complete(bool wait) {
  if (!finished_) return true;
  if (fence_) {
    const GLenum result = await_gpu(wait);
    if (result == GL_TIMEOUT_EXPIRED && !wait) return false;
    fence_.reset();
    if (result != GL_ALREADY_SIGNALED && result != GL_CONDITION_SATISFIED) {
      finished_ = false;
      rendering_took_too_long();
    }
  }
  finished_ = false;
  const gl::PassMark mark("HostBufferObject: map");
  const auto size = static_cast<GLsizeiptr>(surface_.stride_bytes) * static_cast<GLsizeiptr>(surface_.height);
  glBindBuffer(GL_PIXEL_PACK_BUFFER, pixels_.get());
  surface_.pixels =
      static_cast<unsigned char*>(glMapBufferRange(GL_PIXEL_PACK_BUFFER, 0, size, GL_MAP_READ_BIT));
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  if (!surface_.pixels) throw OpenGLError("Could not map the pixels of a frame. ");
  return true;
}

GLenum HostBufferObject::await_gpu(bool wait) const {
  if (!wait) return fence_.wait(0);
  const TimingMark mark("wait for the GPU");
  return fence_.wait(gl::one_second);
}

// A buffer that is given up because its context is not current is unmapped by its end.
void HostBufferObject::unmap() {
  if (!surface_.pixels) return;
  surface_.pixels = nullptr;
  if (!pixels_) return;
  glBindBuffer(GL_PIXEL_PACK_BUFFER, pixels_.get());
  glUnmapBuffer(GL_PIXEL_PACK_BUFFER);
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
}

std::unique_ptr<MappedBuffer> HostBufferObject::map() {
  const TimingMark mark("host_map_buffer_object");
  auto held = lock();
  if (!surface_.pixels) return nullptr;
  return mapped(std::move(held), &surface_);
}

}  // namespace oct
