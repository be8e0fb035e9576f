#include "gl/kept_picture.h"

#include <stdexcept>

#include "gl/pixel_store.h"

namespace oct::gl {
namespace {

constexpr GLsizei most_pixels_a_side = 4096;

GLint asked(GLenum query) {
  GLint value = 0;
  glGetIntegerv(query, &value);
  return value;
}

// Of the draw framebuffer's first buffer; 0 for those that nobody draws a picture to, and for a window's that is not
// there. No error is pending.
GLint bits_of_red() {
  auto buffer = static_cast<GLenum>(asked(GL_DRAW_BUFFER0));
  if (buffer == GL_BACK) buffer = GL_BACK_LEFT;
  if (buffer == GL_FRONT) buffer = GL_FRONT_LEFT;
  const bool of_window = buffer == GL_BACK_LEFT || buffer == GL_FRONT_LEFT;
  if (!of_window && (buffer < GL_COLOR_ATTACHMENT0 || buffer > GL_COLOR_ATTACHMENT15)) return 0;
  GLint bits = 0;
  glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, buffer, GL_FRAMEBUFFER_ATTACHMENT_RED_SIZE,
                                        &bits);
  return glGetError() == GL_NO_ERROR ? bits : 0;
}

}  // namespace

bool KeptPicture::suits_target(GLsizei width, GLsizei height) {
  return width <= most_pixels_a_side && height <= most_pixels_a_side && asked(GL_SAMPLE_BUFFERS) == 0 &&
         bits_of_red() == 8;
}

void KeptPicture::begin(GLsizei width, GLsizei height) {
  kept_ = false;
  if (!framebuffer_ || !color_ || width != width_ || height != height_) {
    release();
    framebuffer_ = Framebuffer::create();
    color_ = Texture::create();
    if (!framebuffer_ || !color_) throw std::runtime_error("Invalid texture for rendering....");
    glActiveTexture(GL_TEXTURE0);
    glBindTexture(GL_TEXTURE_2D, color_.get());
    reset_pixel_unpack();
    glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
    glBindTexture(GL_TEXTURE_2D, 0);
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, color_.get(), 0);
    width_ = width;
    height_ = height;
  }
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
  glViewport(0, 0, width, height);
}

void KeptPicture::copy_to(const std::array<GLint, 4>& viewport) const {
  const GLint x = viewport[0];
  const GLint y = viewport[1];
  const auto before = static_cast<GLuint>(asked(GL_READ_FRAMEBUFFER_BINDING));
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_.get());
  glBlitFramebuffer(0, 0, width_, height_, x, y, x + width_, y + height_, GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, before);
}

void KeptPicture::release() {
  kept_ = false;
  framebuffer_.reset();
  color_.reset();
}

}  // namespace oct::gl
