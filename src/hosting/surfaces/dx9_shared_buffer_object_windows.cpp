#include "hosting/surfaces/dx9_shared_buffer_object_windows.h"

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "core/timing_mark.h"
#include "gl/trace/pass_mark.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

namespace oct {
namespace {

bool framebuffer_is_complete() {
  return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

}  // namespace

DX9SharedBufferObject::~DX9SharedBufferObject() {
  const TimingMark mark("~DX9SharedBufferObject");
  try {
    release();
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

void DX9SharedBufferObject::release() {
  width_ = 0;
  height_ = 0;
  fence_.reset();
  // Deleted, they are not bound any more, as they must not be when the texture is unlocked.
  render_framebuffer_.reset();
  shared_framebuffer_.reset();
  depth_.reset();
  object_.unregister();
  shared_texture_.reset();
  fallback_texture_.reset();
  surface_.reset();
  texture_ = {};
}

void DX9SharedBufferObject::resize(std::uint32_t width, std::uint32_t height) {
  const TimingMark inclusive("dx_buffer_resize_incl");
  const TimingMark exclusive("dx_buffer_resize_excl");
  const gl::PassMark mark("resize shared buffer");
  release();

  const auto columns = static_cast<GLsizei>(width);
  const auto rows = static_cast<GLsizei>(height);
  shared_framebuffer_ = gl::Framebuffer::create();
  depth_ = gl::Renderbuffer::create();
  glBindRenderbuffer(GL_RENDERBUFFER, depth_.get());
  glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, columns, rows);
  glBindRenderbuffer(GL_RENDERBUFFER, 0);
  glBindFramebuffer(GL_FRAMEBUFFER, shared_framebuffer_.get());
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_.get());
  glBindFramebuffer(GL_FRAMEBUFFER, 0);

  share_texture(width, height);
  attach_shared_texture();
  if (blit_fallback_) create_fallback_target(columns, rows);
  width_ = width;
  height_ = height;
}

void DX9SharedBufferObject::share_texture(std::uint32_t width, std::uint32_t height) {
  texture_ = device_.create_texture(width, height);
  if (!interop_) throw OpenGLError("Cannot create a texture for a null device.");
  if (!wglDXSetResourceShareHandleNV(texture_.texture.get(), texture_.share_handle)) {
    log() << "Resource could not be shared. ";
    throw OpenGLError("Could not share resources. ");
  }
  shared_texture_ = gl::Texture::create();
  object_.register_texture(*interop_, texture_.texture.get(), shared_texture_.get());
  surface_ = surface_of(*texture_.texture);
}

void DX9SharedBufferObject::attach_shared_texture() {
  object_.lock("Could not lock shared texture.");
  glBindFramebuffer(GL_FRAMEBUFFER, shared_framebuffer_.get());
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, shared_texture_.get(), 0);
  blit_fallback_ = false;
  bool complete = framebuffer_is_complete();
  if (!complete) {
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, 0);
    blit_fallback_ = true;
    complete = framebuffer_is_complete();
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  object_.unlock("Could not unregister shared object. ");
  if (!complete) throw OpenGLError("Could not get shared framebuffer. Fallback failed.");
}

void DX9SharedBufferObject::create_fallback_target(GLsizei width, GLsizei height) {
  fallback_texture_ = gl::Texture::create();
  glBindTexture(GL_TEXTURE_2D, fallback_texture_.get());
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);  // the client's; null would be an offset in it
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  glBindTexture(GL_TEXTURE_2D, 0);
  render_framebuffer_ = gl::Framebuffer::create();
  glBindFramebuffer(GL_FRAMEBUFFER, render_framebuffer_.get());
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, fallback_texture_.get(), 0);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_.get());
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void DX9SharedBufferObject::prepare(std::int32_t request) {
  object_.lock("shared texture could not be locked. ");
  glBindFramebuffer(GL_FRAMEBUFFER, target().get());
  glViewport(0, 0, columns(), rows());
  begin(request);
}

void DX9SharedBufferObject::finish() {
  if (blit_fallback_) blit_to_shared_texture();
  wait_for_gpu();
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  object_.unlock("shared texture could not be unlocked. ");
  device_.present();
}

void DX9SharedBufferObject::blit_to_shared_texture() {
  const gl::PassMark mark("DXSharedBufferObject: blitFrameBuffer");
  const GLboolean scissor = glIsEnabled(GL_SCISSOR_TEST);  // the client's; it would cut the blit
  glDisable(GL_SCISSOR_TEST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, render_framebuffer_.get());
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, shared_framebuffer_.get());
  glBlitFramebuffer(0, 0, columns(), rows(), 0, 0, columns(), rows(), GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  if (scissor) glEnable(GL_SCISSOR_TEST);
}

void DX9SharedBufferObject::wait_for_gpu() {
  const TimingMark mark("DXSharedBufferObject: finish");
  glFinish();
  fence_.insert();
  if (!fence_) return;  // as with one that cannot be waited for
  const GLenum result = fence_.wait(gl::one_second);
  // Not GL_WAIT_FAILED: a fence that cannot be waited for counts as passed, since glFinish came before it.
  if (result == GL_TIMEOUT_EXPIRED || result == 0xFFFFFFFFU) rendering_took_too_long();
  fence_.reset();
}

std::unique_ptr<MappedBuffer> DX9SharedBufferObject::map() {
  const TimingMark mark("dxmap_buffer_object");
  return mapped(lock(), surface_.get());
}

}  // namespace oct
