// A hand-off buffer whose frames OpenGL renders straight into a Direct3D 9Ex texture.
#pragma once

#include <optional>

#include "gl/fence.h"
#include "gl/gl_names.h"
#include "hosting/abstract_buffer.h"
#include "hosting/dx9_interop.h"

namespace oct {

// The texture is locked for OpenGL between prepare and finish. The first resize gives the buffer its Direct3D
// resources; one that fails leaves a buffer of no size, which the next one repairs.
class DX9SharedBufferObject : public AbstractBuffer {
 public:
  // The interop device must outlive the buffer.
  DX9SharedBufferObject(const InteropDevice& interop, std::int32_t index) : interop_(interop), index_(index) {}
  ~DX9SharedBufferObject() override;

  void set_up() override {}
  void release() override;
  void resize(std::uint32_t width, std::uint32_t height) override;
  std::uint32_t width() const override { return width_; }
  std::uint32_t height() const override { return height_; }
  bool is_offscreen() const override { return false; }
  std::int32_t order_key() const override { return orderKey_; }
  void prepare(std::int32_t request) override;
  void finish() override;
  std::int64_t timestamp() const override { return nanosecondsNow(); }
  void read_pixels(void* data) override;
  std::int32_t buffer_id() const override { return index_; }
  std::unique_lock<std::mutex> lock() override { return std::unique_lock(mutex_); }
  std::unique_ptr<AbstractMappedBuffer> map() override;

 private:
  const gl::Framebuffer& target() const { return blitFallback_ ? renderFramebuffer_ : sharedFramebuffer_; }
  void shareTexture(std::uint32_t width, std::uint32_t height);
  void attachSharedTexture();
  void createFallbackTarget(GLsizei width, GLsizei height);
  void waitForGpu();

  std::mutex mutex_;
  const InteropDevice& interop_;
  DX9Texture texture_;
  ComOwner<IDirect3DSurface9> surface_;
  gl::Framebuffer renderFramebuffer_;  // used when the driver takes no depth beside a shared texture
  bool blitFallback_ = false;
  gl::Framebuffer sharedFramebuffer_;
  gl::Texture sharedTexture_;
  gl::Texture fallbackTexture_;
  gl::Renderbuffer depth_;
  InteropObject object_;
  std::optional<InteropLock> openGLTurn_;
  std::uint32_t width_ = 0;
  std::uint32_t height_ = 0;
  const std::int32_t index_;
  std::int32_t orderKey_ = -1;
  std::int64_t prepareTime_ = 0;
  gl::Fence fence_;
};

}  // namespace oct
