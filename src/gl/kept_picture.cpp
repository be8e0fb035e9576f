#include "gl/kept_picture.h"

#include "core/exception.h"
#include "gl/pixel_store.h"
#include "gl/target/reading.h"
#include "gl/trace/debugging.h"
#include "gl/trace/pass_mark.h"

namespace oct::gl {
namespace {

constexpr GLsizei most_pixels_a_side = 4096;

// Of the draw framebuffer's first buffer; 0 for those that nobody draws a picture to, and for a window's that is not
// there. No error is pending.
GLint bits_of_red() {
  auto buffer = static_cast<GLenum>(integer(GL_DRAW_BUFFER0));
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
  return width <= most_pixels_a_side && height <= most_pixels_a_side && integer(GL_SAMPLE_BUFFERS) == 0 &&
         bits_of_red() == 8;
}

std::optional<GLenum> KeptPicture::depth_of_target() {
  const bool window = integer(GL_DRAW_FRAMEBUFFER_BINDING) == 0;
  const auto value_of = [](GLenum attachment, GLenum name) {
    GLint value = 0;
    glGetFramebufferAttachmentParameteriv(GL_DRAW_FRAMEBUFFER, attachment, name, &value);
    return value;
  };
  const auto there = [&](GLenum attachment) {
    return value_of(attachment, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE) != GL_NONE;
  };
  const GLenum depth = window ? GL_DEPTH : GL_DEPTH_ATTACHMENT;
  const GLenum stencil = window ? GL_STENCIL : GL_STENCIL_ATTACHMENT;
  const GLint bits = there(depth) ? value_of(depth, GL_FRAMEBUFFER_ATTACHMENT_DEPTH_SIZE) : 0;
  if (bits == 0) return GL_NONE;
  const bool floats = value_of(depth, GL_FRAMEBUFFER_ATTACHMENT_COMPONENT_TYPE) == GL_FLOAT;
  const GLint stencil_bits = there(stencil) ? value_of(stencil, GL_FRAMEBUFFER_ATTACHMENT_STENCIL_SIZE) : 0;
  if (stencil_bits == 0 && bits == 16) return GL_DEPTH_COMPONENT16;
  if (stencil_bits == 0 && bits == 24) return GL_DEPTH_COMPONENT24;
  if (stencil_bits == 0 && bits == 32) return floats ? GL_DEPTH_COMPONENT32F : GL_DEPTH_COMPONENT32;
  if (stencil_bits == 8 && bits == 24) return GL_DEPTH24_STENCIL8;
  if (stencil_bits == 8 && bits == 32 && floats) return GL_DEPTH32F_STENCIL8;
  return std::nullopt;
}

void KeptPicture::begin(GLsizei width, GLsizei height, GLenum depth) {
  kept_ = false;
  if (!framebuffer_ || !color_ || width != width_ || height != height_ || depth != depth_format_)
    make(width, height, depth);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
  glViewport(0, 0, width, height);
}

void KeptPicture::make(GLsizei width, GLsizei height, GLenum depth) {
  release();
  framebuffer_ = Framebuffer::create();
  color_ = Texture::create();
  if (depth != GL_NONE) depth_ = Texture::create();
  if (!framebuffer_ || !color_ || (depth != GL_NONE && !depth_))
    throw OpenGLError("Invalid texture for rendering....");
  glActiveTexture(GL_TEXTURE0);
  glBindTexture(GL_TEXTURE_2D, color_.get());
  reset_pixel_unpack();
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
  glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, color_.get(), 0);
  if (depth != GL_NONE) {
    const bool stencil = depth == GL_DEPTH24_STENCIL8 || depth == GL_DEPTH32F_STENCIL8;
    const GLenum type = depth == GL_DEPTH24_STENCIL8    ? GL_UNSIGNED_INT_24_8
                        : depth == GL_DEPTH32F_STENCIL8 ? GL_FLOAT_32_UNSIGNED_INT_24_8_REV
                                                        : GL_FLOAT;
    glBindTexture(GL_TEXTURE_2D, depth_.get());
    glTexImage2D(GL_TEXTURE_2D, 0, static_cast<GLint>(depth), width, height, 0,
                 stencil ? GL_DEPTH_STENCIL : GL_DEPTH_COMPONENT, type, nullptr);
    glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, stencil ? GL_DEPTH_STENCIL_ATTACHMENT : GL_DEPTH_ATTACHMENT,
                           GL_TEXTURE_2D, depth_.get(), 0);
  }
  glBindTexture(GL_TEXTURE_2D, 0);
  label(framebuffer_, "kept picture");
  label(color_, "kept picture");
  label(depth_, "depths of the kept picture");
  width_ = width;
  height_ = height;
  depth_format_ = depth;
}

void KeptPicture::copy_to(const std::array<GLint, 4>& viewport) const {
  const PassMark mark("copy the kept picture");
  const GLint x = viewport[0];
  const GLint y = viewport[1];
  const auto before = static_cast<GLuint>(integer(GL_READ_FRAMEBUFFER_BINDING));
  glBindFramebuffer(GL_READ_FRAMEBUFFER, framebuffer_.get());
  glBlitFramebuffer(0, 0, width_, height_, x, y, x + width_, y + height_,
                    GL_COLOR_BUFFER_BIT | (depth_ ? GL_DEPTH_BUFFER_BIT : 0U), GL_NEAREST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, before);
}

std::vector<std::uint8_t> KeptPicture::pixels() const {
  std::vector<std::uint8_t> bytes(std::size_t{4} * static_cast<std::size_t>(width_) *
                                  static_cast<std::size_t>(height_));
  const Reading reading(framebuffer_);
  glReadPixels(0, 0, width_, height_, GL_RGBA, GL_UNSIGNED_BYTE, bytes.data());
  return bytes;
}

void KeptPicture::release() {
  kept_ = false;
  framebuffer_.reset();
  color_.reset();
  depth_.reset();
}

}  // namespace oct::gl
