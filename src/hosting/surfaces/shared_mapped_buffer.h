// The view of a finished frame that the buffers of the ring give.
#pragma once

#include <utility>

#include "hosting/surfaces/hand_off_buffer.h"

namespace oct {

class SharedMappedBuffer : public AbstractMappedBuffer {
 public:
  // With the buffer's lock.
  SharedMappedBuffer(std::unique_lock<std::mutex> lock, const HandOffBuffer& buffer, void* surface)
      : lock_(std::move(lock)),
        buffer_(buffer),
        surface_(surface),
        key_(static_cast<std::uint32_t>(buffer.order_key())),
        prepareTime_(buffer.prepare_time()) {}

  std::uint32_t width() const override { return buffer_.width(); }
  std::uint32_t height() const override { return buffer_.height(); }
  void* surface() const override { return surface_; }
  std::int32_t buffer_id() const override { return buffer_.buffer_id(); }
  std::uint32_t index() const override { return key_; }
  std::unique_lock<std::mutex> take_lock() override { return std::move(lock_); }
  std::int64_t timestamp() const override { return prepareTime_; }

 private:
  std::unique_lock<std::mutex> lock_;
  const HandOffBuffer& buffer_;
  void* const surface_;
  const std::uint32_t key_;
  const std::int64_t prepareTime_;
};

}  // namespace oct
