#include "octview/window/pane_texture.h"

#include <cstdint>
#include <stdexcept>
#include <string>

namespace oct::app {

PaneTexture::PaneTexture(const GlFunctions& gl) : gl_(gl) {
  gl_.gen_framebuffers(1, &framebuffer_);
  gl_.gen_textures(1, &texture_);
  gl_.gen_renderbuffers(1, &depth_);
}

PaneTexture::~PaneTexture() {
  gl_.delete_framebuffers(1, &framebuffer_);
  gl_.delete_textures(1, &texture_);
  gl_.delete_renderbuffers(1, &depth_);
}

void* PaneTexture::id() const {
  return reinterpret_cast<void*>(std::uintptr_t{texture_});
}

void PaneTexture::resize(int width, int height) {
  if (width == width_ && height == height_) return;
  gl_.bind_texture(GL_TEXTURE_2D, texture_);
  gl_.tex_image_2d(GL_TEXTURE_2D, 0, GL_RGBA8, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  gl_.tex_parameter_i(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR);
  gl_.tex_parameter_i(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR);
  gl_.tex_parameter_i(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  gl_.tex_parameter_i(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  gl_.bind_texture(GL_TEXTURE_2D, 0);
  gl_.bind_renderbuffer(GL_RENDERBUFFER, depth_);
  gl_.renderbuffer_storage(GL_RENDERBUFFER, GL_DEPTH24_STENCIL8, width, height);
  gl_.bind_renderbuffer(GL_RENDERBUFFER, 0);
  gl_.framebuffer_texture_2d(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, texture_, 0);
  gl_.framebuffer_renderbuffer(GL_FRAMEBUFFER, GL_DEPTH_STENCIL_ATTACHMENT, GL_RENDERBUFFER, depth_);
  if (gl_.check_framebuffer_status(GL_FRAMEBUFFER) != GL_FRAMEBUFFER_COMPLETE) {
    width_ = height_ = 0;
    throw std::runtime_error("OpenGL cannot draw into a texture of " + std::to_string(width) + " x " +
                             std::to_string(height) + " pixels");
  }
  width_ = width;
  height_ = height;
}

PaneTexture::Target::Target(PaneTexture& texture, int width, int height) : gl_(texture.gl_) {
  gl_.get_integer_v(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer_);
  gl_.get_integer_v(GL_VIEWPORT, viewport_);
  gl_.bind_framebuffer(GL_FRAMEBUFFER, texture.framebuffer_);
  try {
    texture.resize(width, height);
  } catch (...) {
    gl_.bind_framebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(framebuffer_));
    throw;
  }
  gl_.disable(GL_SCISSOR_TEST);
  gl_.viewport(0, 0, width, height);
}

PaneTexture::Target::~Target() {
  gl_.bind_framebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(framebuffer_));
  gl_.viewport(viewport_[0], viewport_[1], viewport_[2], viewport_[3]);
}

}  // namespace oct::app
