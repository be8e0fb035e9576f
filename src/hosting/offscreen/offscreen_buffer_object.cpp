#include "hosting/offscreen/offscreen_buffer_object.h"

#include <utility>

#include "core/timing_mark.h"
#include "gl/read_back.h"

namespace oct {
namespace {

// Values of the event.
constexpr std::uint32_t finished = 0xFFFFFFFFU;
constexpr std::uint32_t cancelled = 0;

}  // namespace

void OffscreenBufferObject::release() {
  detach();
  const GLuint names[] = {target_.framebuffer.get(), target_.color.get(), target_.depth.get()};
  target_.reset();
  // A second time, with names that no longer exist: OpenGL ignores them.
  gl::FramebufferKind::destroy(names[0]);
  gl::RenderbufferKind::destroy(names[1]);
  gl::RenderbufferKind::destroy(names[2]);
}

void OffscreenBufferObject::resize(std::uint32_t width, std::uint32_t height) {
  done_.guarded([&] { size_ = {width, height}; });
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
void OffscreenBufferObject::prepare() {
  const TimingMark mark("OffscreenBuffer::prepare");
  if (target_.framebuffer && target_.color && target_.depth) {
    detach();
  } else {
    glBindFramebuffer(GL_FRAMEBUFFER, 0);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
  }
  target_.reset();

  frame_size_ = done_.guarded([&] { return size_; });
  const auto width = static_cast<GLsizei>(frame_size_.width);
  const auto height = static_cast<GLsizei>(frame_size_.height);
  target_.create(width, height);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);

  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, target_.framebuffer.get());
  glViewport(0, 0, width, height);
  record_timing_mark("before_rendering");
}

void OffscreenBufferObject::finish() {
  const TimingMark mark("OffscreenBuffer::finish");
  void* data = nullptr;
  done_.signal_if(finished, [&] {
    // Without anything to read the frame is over at once. Signalling later would
    // answer a client that asks now.
    if (!output_data_) return true;
    // A client may have asked for another size while this frame was drawn. Its memory has that size, so it is
    // left for the next frame.
    if (frame_size_ == size_) data = std::exchange(output_data_, nullptr);
    return false;
  });
  if (!data) return;
  read_back(data);
  done_.signal(finished);
}

void OffscreenBufferObject::read_back(void* data) {
  glBindBuffer(GL_PIXEL_PACK_BUFFER, 0);
  gl::read_color(target_.framebuffer, static_cast<GLsizei>(frame_size_.width),
                 static_cast<GLsizei>(frame_size_.height), data);
}

void OffscreenBufferObject::set_output_data(void* data) {
  const TimingMark mark("OffscreenBuffer::set_output_data");
  done_.clear([&] { output_data_ = data; });
}

bool OffscreenBufferObject::wait() {
  const TimingMark mark("OffscreenBuffer::wait");
  return done_.wait([&] { output_data_ = nullptr; }) == finished;
}

// A client whose picture is there may not have woken up yet; it is told of the picture, not of the end.
void OffscreenBufferObject::cancel() {
  done_.signal_first(cancelled, [&] { output_data_ = nullptr; });
}

}  // namespace oct
