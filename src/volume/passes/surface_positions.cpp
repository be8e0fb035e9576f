#include "volume/passes/surface_positions.h"

#include <string>

#include "core/exception.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"
#include "gl/target/float_pixel.h"
#include "gl/trace/debugging.h"
#include "gl/trace/pass_mark.h"

namespace oct {

namespace {

[[noreturn]] void incomplete(GLenum status) {
  throw OpenGLError(std::string("An OpenGL error occured. Framebuffer is not complete: ") +
                    gl::framebufferStatusName(status));
}

}  // namespace

void ScreenTexture::release() {
  texture_.reset();
  rebuild_ = true;
}

void ScreenTexture::fit(Viewport viewport) {
  if (!texture_) texture_ = gl::Texture::create(), rebuild_ = true;
  if (!texture_) throw OpenGLError("Invalid texture for rendering....");
  if (!rebuild_ && size_.width == viewport.width && size_.height == viewport.height) return;
  rebuild_ = true;
  bind_volume_texture(volume_unit::surface, GL_TEXTURE_2D, texture_.get());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  gl::reset_pixel_unpack();
  const GLenum channels = format_ == GL_RGBA32F ? GL_RGBA : GL_DEPTH_COMPONENT;
  glTexImage2D(GL_TEXTURE_2D, 0, format_, viewport.width, viewport.height, 0, channels, GL_FLOAT, nullptr);
  gl::label(texture_, format_ == GL_RGBA32F ? "positions of the surface" : "depths of the surface");
  gl::throwOnGLError("VolumeRenderer::back texture");
  size_ = viewport;
  rebuild_ = false;
}

void SurfacePositions::release() {
  framebuffer_.reset();
  positions_.release();
  depth_.release();
}

void SurfacePositions::attach() const {
  glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, positions_.get(), 0);
  glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D, depth_.get(), 0);
  const GLenum status = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER);
  if (status != GL_FRAMEBUFFER_COMPLETE) incomplete(status);
}

void SurfacePositions::draw(const VolumeFrame& frame, Surface& surface) {
  const gl::PassMark mark("positions of the surface");
  const Viewport viewport = frame.camera.target;
  positions_.fit(viewport);
  depth_.fit(viewport);
  if (!framebuffer_) framebuffer_ = gl::Framebuffer::create();
  if (!framebuffer_) incomplete(GL_FRAMEBUFFER_UNDEFINED);
  const gl::DrawTargetGuard target;
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
  gl::label(framebuffer_, "positions of the surface");
  glViewport(0, 0, viewport.width, viewport.height);
  attach();
  const gl::ScopedDisable disabled(GL_SCISSOR_TEST);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  const gl::DepthTest nearest(GL_LEQUAL, true);
  surface.draw_back(frame);
}

std::optional<glm::vec3> SurfacePositions::at(const glm::uvec2& pixel) const {
  const glm::vec4 found = gl::read_floats(framebuffer_, GL_COLOR_ATTACHMENT0, pixel);
  if (found.a == 0.0F) return std::nullopt;
  return glm::vec3(found);
}

}  // namespace oct
