#include "gl/target/read_back.h"

#include <stdexcept>

#include "gl/draw_state.h"
#include "gl/pixel_store.h"

namespace oct::gl {
namespace {

// The order of the rows that read-backs write, where the driver has a choice; afterwards it is the client's again.
class RowOrder {
 public:
  explicit RowOrder(bool top_down) {
    if (!GLEW_MESA_pack_invert) return;
    before_ = integer(GL_PACK_INVERT_MESA);
    changed_ = (before_ != 0) != top_down;
    if (changed_) glPixelStorei(GL_PACK_INVERT_MESA, top_down);
  }
  ~RowOrder() {
    if (changed_) glPixelStorei(GL_PACK_INVERT_MESA, before_);
  }
  RowOrder(const RowOrder&) = delete;
  RowOrder& operator=(const RowOrder&) = delete;

 private:
  GLint before_ = 0;
  bool changed_ = false;
};

}  // namespace

PixelFormat pixel_format_of(int value) {
  if (value < 0 || value > 3) throw std::invalid_argument("Invalid pixel format selected. ");
  return static_cast<PixelFormat>(value);
}

void ReadBack::read(const Framebuffer& framebuffer, GLsizei width, GLsizei height, PixelFormat format,
                    void* destination) {
  const bool top_down = format == PixelFormat::bgra_top_down || format == PixelFormat::rgba_top_down;
  const bool red_first = format == PixelFormat::rgba || format == PixelFormat::rgba_top_down;
  reset_pixel_pack();
  const RowOrder order(top_down);
  glBindFramebuffer(GL_FRAMEBUFFER, framebuffer.get());
  glReadBuffer(GL_COLOR_ATTACHMENT0);
  if (top_down && !GLEW_MESA_pack_invert) copy_upside_down(framebuffer, width, height);
  glReadPixels(0, 0, width, height, red_first ? GL_RGBA : GL_BGRA, GL_UNSIGNED_BYTE, destination);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

// Leaves the copy bound for reading. What OpenGL says to it is the caller's to ask.
void ReadBack::copy_upside_down(const Framebuffer& framebuffer, GLsizei width, GLsizei height) {
  if (!copy_ || !color_ || width != width_ || height != height_) {
    copy_ = Framebuffer::create();
    color_ = Renderbuffer::create();
    width_ = width;
    height_ = height;
    glBindRenderbuffer(GL_RENDERBUFFER, color_.get());
    glRenderbufferStorage(GL_RENDERBUFFER, GL_RGBA8, width, height);
    glBindRenderbuffer(GL_RENDERBUFFER, 0);
    glBindFramebuffer(GL_FRAMEBUFFER, copy_.get());
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_RENDERBUFFER, color_.get());
  }
  const ScopedDisable whole{GL_SCISSOR_TEST};  // it cuts a copy within the card, and not what is read
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer.get());
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, copy_.get());
  glBlitFramebuffer(0, 0, width, height, 0, height, width, 0, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, copy_.get());
}

void ReadBack::release() {
  copy_.reset();
  color_.reset();
}

}  // namespace oct::gl
