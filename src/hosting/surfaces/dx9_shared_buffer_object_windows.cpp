#include "hosting/surfaces/dx9_shared_buffer_object_windows.h"

#include <stdexcept>

#include "core/log.h"
#include "core/timing_mark.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

namespace oct {
namespace {

bool framebufferIsComplete() {
  return glCheckFramebufferStatus(GL_FRAMEBUFFER) == GL_FRAMEBUFFER_COMPLETE;
}

}  // namespace

DX9SharedBufferObject::~DX9SharedBufferObject() {
  const TimingMark mark("~DX9SharedBufferObject");
  openGLTurn_.reset();  // before the object is unregistered
}

void DX9SharedBufferObject::release() {
  openGLTurn_.reset();
  object_.unregister();
}

void DX9SharedBufferObject::resize(std::uint32_t width, std::uint32_t height) {
  const TimingMark inclusive("dx_buffer_resize_incl");
  const TimingMark exclusive("dx_buffer_resize_excl");
  const TimingMark mark("resize shared buffer");
  width_ = 0;
  height_ = 0;
  fence_.reset();
  openGLTurn_.reset();
  renderFramebuffer_.reset();
  sharedFramebuffer_.reset();
  depth_.reset();
  object_.unregister();
  sharedTexture_.reset();
  fallbackTexture_.reset();
  surface_.reset();
  texture_ = {};

  const auto columns = static_cast<GLsizei>(width);
  const auto rows = static_cast<GLsizei>(height);
  sharedFramebuffer_ = gl::Framebuffer::create();
  depth_ = gl::Renderbuffer::create();
  glBindRenderbuffer(GL_RENDERBUFFER, depth_.get());
  glRenderbufferStorage(GL_RENDERBUFFER, GL_DEPTH_COMPONENT24, columns, rows);
  glBindRenderbuffer(GL_RENDERBUFFER, 0);
  glBindFramebuffer(GL_FRAMEBUFFER, sharedFramebuffer_.get());
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_.get());
  glBindFramebuffer(GL_FRAMEBUFFER, 0);

  shareTexture(width, height);
  attachSharedTexture();
  if (blitFallback_) createFallbackTarget(columns, rows);
  width_ = width;
  height_ = height;
}

void DX9SharedBufferObject::shareTexture(std::uint32_t width, std::uint32_t height) {
  texture_ = device_.createTexture(width, height);
  if (!interop_) throw std::runtime_error("Cannot create a texture for a null device.");
  if (!wglDXSetResourceShareHandleNV(texture_.texture.get(), texture_.shareHandle)) {
    log() << "Resource could not be shared. ";
    throw std::runtime_error("Could not share resources. ");
  }
  sharedTexture_ = gl::Texture::create();
  object_.registerTexture(*interop_, texture_.texture.get(), sharedTexture_.get());
  surface_ = surfaceOf(*texture_.texture);
}

void DX9SharedBufferObject::attachSharedTexture() {
  InteropLock turn(object_, "Could not lock shared texture.");
  glBindFramebuffer(GL_FRAMEBUFFER, sharedFramebuffer_.get());
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, sharedTexture_.get(), 0);
  blitFallback_ = false;
  bool complete = framebufferIsComplete();
  if (!complete) {
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, 0);
    blitFallback_ = true;
    complete = framebufferIsComplete();
  }
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  if (!complete) throw std::runtime_error("Could not get shared framebuffer. Fallback failed.");
  turn.unlock("Could not unregister shared object. ");
}

void DX9SharedBufferObject::createFallbackTarget(GLsizei width, GLsizei height) {
  fallbackTexture_ = gl::Texture::create();
  glBindTexture(GL_TEXTURE_2D, fallbackTexture_.get());
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);  // the client's; null would be an offset in it
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA, width, height, 0, GL_RGBA, GL_UNSIGNED_BYTE, nullptr);
  glBindTexture(GL_TEXTURE_2D, 0);
  renderFramebuffer_ = gl::Framebuffer::create();
  glBindFramebuffer(GL_FRAMEBUFFER, renderFramebuffer_.get());
  glFramebufferTexture2D(GL_FRAMEBUFFER, GL_COLOR_ATTACHMENT0, GL_TEXTURE_2D, fallbackTexture_.get(), 0);
  glFramebufferRenderbuffer(GL_FRAMEBUFFER, GL_DEPTH_ATTACHMENT, GL_RENDERBUFFER, depth_.get());
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
}

void DX9SharedBufferObject::prepare(std::int32_t request) {
  openGLTurn_.reset();  // of a frame that did not come to its end
  openGLTurn_.emplace(object_, "shared texture could not be locked. ");
  glBindFramebuffer(GL_FRAMEBUFFER, target().get());
  glViewport(0, 0, columns(), rows());
  begin(request);
}

void DX9SharedBufferObject::finish() {
  if (blitFallback_) blitToSharedTexture();
  waitForGpu();
  if (!openGLTurn_) throw std::runtime_error("shared texture could not be unlocked. ");
  openGLTurn_->unlock("shared texture could not be unlocked. ");
  openGLTurn_.reset();
  // Outside a scene both calls fail and are meant to: Present hands the driver what is queued.
  device_.get()->EndScene();
  device_.get()->Present(nullptr, nullptr, nullptr, nullptr);
}

void DX9SharedBufferObject::blitToSharedTexture() {
  const TimingMark mark("DXSharedBufferObject: blitFrameBuffer");
  const GLboolean scissor = glIsEnabled(GL_SCISSOR_TEST);  // the client's; it would cut the blit
  glDisable(GL_SCISSOR_TEST);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, renderFramebuffer_.get());
  glBindFramebuffer(GL_DRAW_FRAMEBUFFER, sharedFramebuffer_.get());
  glBlitFramebuffer(0, 0, columns(), rows(), 0, 0, columns(), rows(), GL_COLOR_BUFFER_BIT, GL_NEAREST);
  glBindFramebuffer(GL_FRAMEBUFFER, 0);
  if (scissor) glEnable(GL_SCISSOR_TEST);
}

void DX9SharedBufferObject::waitForGpu() {
  const TimingMark mark("DXSharedBufferObject: finish");
  glFinish();
  fence_.insert();
  const GLenum result = fence_.wait(gl::oneSecond);
  // Not GL_WAIT_FAILED: a fence that cannot be waited for counts as passed, since glFinish came before it.
  if (result == GL_TIMEOUT_EXPIRED || result == 0xFFFFFFFFU) renderingTookTooLong();
  fence_.reset();
}

std::unique_ptr<MappedBuffer> DX9SharedBufferObject::map() {
  const TimingMark mark("dxmap_buffer_object");
  return mapped(lock(), surface_.get());
}

}  // namespace oct
