// A hand-off buffer whose frames reach the client in host memory.
#pragma once

#include "gl/fence.h"
#include "gl/target/read_back.h"
#include "gl/target/render_target.h"
#include "hosting/surfaces/hand_off_buffer.h"
#include "oct_rendering/oct_rendering.h"

namespace oct {

// finish starts the read-back into a pixel-pack buffer and returns; complete maps that buffer once the GPU is
// done, and the client reads the mapped memory itself. Nothing is copied by the processor.
class HostBufferObject : public HandOffBuffer {
 public:
  explicit HostBufferObject(std::int32_t id, gl::PixelFormat format = gl::PixelFormat::bgra)
      : HandOffBuffer(id), format_(format) {}
  ~HostBufferObject() override;

  void release() override;
  void resize(std::uint32_t width, std::uint32_t height) override;
  std::uint32_t width() const override { return surface_.width; }
  std::uint32_t height() const override { return surface_.height; }
  void prepare(std::int32_t request) override;
  void finish() override;
  std::unique_ptr<MappedBuffer> map() override;
  bool complete(bool wait) override;

 private:
  GLenum await_gpu(bool wait) const;
  GLsizei columns() const { return static_cast<GLsizei>(surface_.width); }
  GLsizei rows() const { return static_cast<GLsizei>(surface_.height); }
  void unmap();

  const gl::PixelFormat format_;
  OctHostSurface surface_{};  // pixels is the mapped memory, null while nothing is mapped
  gl::RenderTarget target_;
  gl::ReadBack read_back_;
  gl::Buffer pixels_;
  gl::Fence fence_;
  bool finished_ = false;  // a frame has been read back and is not mapped yet
};

}  // namespace oct
