// A hand-off buffer whose frames reach the client in host memory.
#pragma once

#include "gl/fence.h"
#include "gl/gl_names.h"
#include "hosting/abstract_buffer.h"
#include "oct_rendering/oct_rendering.h"

namespace oct {

// finish starts the read-back into a pixel-pack buffer and returns; complete maps that buffer once the GPU is
// done, and the client reads the mapped memory itself. Nothing is copied by the processor.
class HostBufferObject : public AbstractBuffer {
 public:
  explicit HostBufferObject(std::int32_t index) : index_(index) {}
  HostBufferObject(const HostBufferObject&) = delete;
  HostBufferObject& operator=(const HostBufferObject&) = delete;
  ~HostBufferObject() override;

  void set_up() override {}
  void release() override;
  void resize(std::uint32_t width, std::uint32_t height) override;
  std::uint32_t width() const override { return surface_.width; }
  std::uint32_t height() const override { return surface_.height; }
  bool is_offscreen() const override { return false; }
  std::int32_t order_key() const override { return orderKey_; }
  void prepare(std::int32_t request) override;
  void finish() override;
  std::int64_t timestamp() const override { return nanosecondsNow(); }
  void read_pixels(void* data) override;
  std::int32_t buffer_id() const override { return index_; }
  std::unique_lock<std::mutex> lock() override { return std::unique_lock(mutex_); }
  std::unique_ptr<AbstractMappedBuffer> map() override;  // null while no frame is complete
  bool complete(bool wait) override;

 private:
  void read(void* destination);
  void unmap();

  std::mutex mutex_;
  const std::int32_t index_;
  std::int32_t orderKey_ = -1;
  std::int64_t prepareTime_ = 0;
  OctHostSurface surface_{};  // pixels is the mapped memory, null while nothing is mapped
  gl::Framebuffer framebuffer_;
  gl::Renderbuffer color_;
  gl::Renderbuffer depth_;
  gl::Buffer pixels_;
  gl::Fence fence_;
};

}  // namespace oct
