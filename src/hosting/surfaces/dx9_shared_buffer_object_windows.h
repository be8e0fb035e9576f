// A hand-off buffer whose frames OpenGL renders straight into a Direct3D 9Ex texture.
#pragma once

#include "gl/fence.h"
#include "gl/gl_names.h"
#include "hosting/surfaces/dx9_interop_windows.h"
#include "hosting/surfaces/hand_off_buffer.h"

namespace oct {

// The texture is locked for OpenGL between prepare and finish, and no framebuffer that has it is bound at any
// other time. The first resize gives the buffer its Direct3D resources; one that fails leaves a buffer of no
// size, which the next one repairs.
class DX9SharedBufferObject : public HandOffBuffer {
 public:
  // Both devices must outlive the buffer. Without an interop device no resize succeeds.
  DX9SharedBufferObject(const DX9Device& device, const InteropDevice* interop, std::int32_t index)
      : HandOffBuffer(index), device_(device), interop_(interop) {}
  ~DX9SharedBufferObject() override;

  void release() override;
  void resize(std::uint32_t width, std::uint32_t height) override;
  std::uint32_t width() const override { return width_; }
  std::uint32_t height() const override { return height_; }
  void prepare(std::int32_t request) override;
  void finish() override;
  std::unique_ptr<MappedBuffer> map() override;

 private:
  const gl::Framebuffer& target() const { return blit_fallback_ ? render_framebuffer_ : shared_framebuffer_; }
  void share_texture(std::uint32_t width, std::uint32_t height);
  void attach_shared_texture();
  void create_fallback_target(GLsizei width, GLsizei height);
  void blit_to_shared_texture();
  void wait_for_gpu();
  GLsizei columns() const { return static_cast<GLsizei>(width_); }
  GLsizei rows() const { return static_cast<GLsizei>(height_); }

  const DX9Device& device_;
  const InteropDevice* const interop_;
  DX9Texture texture_;
  ComOwner<IDirect3DSurface9> surface_;
  gl::Framebuffer render_framebuffer_;  // used when the driver takes no depth beside a shared texture
  bool blit_fallback_ = false;
  gl::Framebuffer shared_framebuffer_;
  gl::Texture shared_texture_;
  gl::Texture fallback_texture_;
  gl::Renderbuffer depth_;
  InteropObject object_;
  std::uint32_t width_ = 0;
  std::uint32_t height_ = 0;
  gl::Fence fence_;
};

}  // namespace oct
