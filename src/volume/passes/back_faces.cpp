#include "volume/passes/back_faces.h"

#include <stdexcept>
#include <string>

#include <glm/gtc/type_ptr.hpp>

#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/pixel_store.h"

namespace oct {

namespace {

[[noreturn]] void incomplete(GLenum status) {
  throw std::runtime_error(std::string("An OpenGL error occured. Framebuffer is not complete: ") +
                           gl::framebufferStatusName(status));
}

}  // namespace

void ScreenTexture::create() {
  if (!texture_) texture_ = gl::Texture::create();
  rebuild_ = true;
}

void ScreenTexture::release() {
  texture_.reset();
  rebuild_ = true;
}

bool ScreenTexture::fit(Viewport viewport) {
  if (!texture_) create();
  if (!texture_) throw std::runtime_error("Invalid texture for rendering....");
  if (!rebuild_ && size_.width == viewport.width && size_.height == viewport.height) return false;
  rebuild_ = true;
  bind_volume_texture(volume_unit::back, GL_TEXTURE_2D, texture_.get());
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
  gl::reset_pixel_unpack();
  const GLenum channels = format_ == GL_RGBA32F ? GL_RGBA : GL_DEPTH_COMPONENT;
  glTexImage2D(GL_TEXTURE_2D, 0, format_, viewport.width, viewport.height, 0, channels, GL_FLOAT, nullptr);
  gl::throwOnGLError("VolumeRenderer::back texture");
  size_ = viewport;
  rebuild_ = false;
  return true;
}

void BackFaces::create() {
  positions_.create();
  if (!framebuffer_) framebuffer_ = gl::Framebuffer::create();
}

void BackFaces::release() {
  framebuffer_.reset();
  attached_.reset();
  positions_.release();
  depth_.release();
}

void BackFaces::attach(bool with_depth) {
  if (attached_ == with_depth) return;
  attached_.reset();
  glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, positions_.get(), 0);
  glFramebufferTexture2D(GL_DRAW_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_TEXTURE_2D,
                         with_depth ? depth_.get() : 0, 0);
  const GLenum status = glCheckFramebufferStatus(GL_DRAW_FRAMEBUFFER);
  if (status != GL_FRAMEBUFFER_COMPLETE) incomplete(status);
  gl::throwOnGLError("VolumeRenderer::back framebuffer");
  attached_ = with_depth;
}

void BackFaces::draw(const VolumeFrame& frame, Box& box, gl::Geometry& cut_face, Surface& surface) {
  const bool ends_on_surface = frame.surface_shown();
  const Viewport viewport = frame.camera.viewport;
  if (positions_.fit(viewport)) attached_.reset();
  if (ends_on_surface && depth_.fit(viewport)) attached_.reset();
  if (!framebuffer_) framebuffer_ = gl::Framebuffer::create(), attached_.reset();
  if (!framebuffer_) incomplete(GL_FRAMEBUFFER_UNDEFINED);
  const gl::DrawTargetGuard target;
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, framebuffer_.get());
  glViewport(0, 0, viewport.width, viewport.height);
  attach(ends_on_surface);
  const gl::ScopedDisable disabled(GL_SCISSOR_TEST);
  glClearColor(0.0F, 0.0F, 0.0F, 0.0F);
  glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
  draw_volume(frame, box, cut_face);
  if (!ends_on_surface) return;
  const gl::DepthTest nearest(GL_LEQUAL, true);
  surface.draw_back(frame);
}

void BackFaces::draw_volume(const VolumeFrame& frame, Box& box, gl::Geometry& cut_face) {
  const gl::DepthTest depth(GL_ALWAYS, true);
  const gl::FaceCulling culling(GL_FRONT, frame.front_winding());
  const RaycastingProgram& program = frame.programs.raycasting_back;
  program.use();
  glUniformMatrix4fv(program.at().modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(program.at().projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  const auto corners = static_cast<GLsizei>(frame.clip_plane.cut_face().size());
  if (corners > 0 && !frame.cut_faces_viewer()) {
    glUniform4f(program.ray().clipPlane, 0.0F, 0.0F, 0.0F, 0.0F);
    cut_face.draw(GL_TRIANGLES, 0, corners);
  }
  glUniform4fv(program.ray().clipPlane, 1, glm::value_ptr(frame.clip_plane.plane()));
  box.draw(frame.box);
}

}  // namespace oct
