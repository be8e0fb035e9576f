// The view of a finished frame that both kinds of hand-off buffers give.
#pragma once

#include <utility>

#include "hosting/abstract_buffer.h"

namespace oct {

class SharedMappedBuffer : public AbstractMappedBuffer {
 public:
  SharedMappedBuffer(std::unique_lock<std::mutex> lock, const AbstractBuffer& buffer, void* surface,
                     std::int64_t prepareTime)
      : lock_(std::move(lock)),
        buffer_(buffer),
        surface_(surface),
        key_(static_cast<std::uint32_t>(buffer.order_key())),
        prepareTime_(prepareTime) {}

  std::uint32_t width() const override { return buffer_.width(); }
  std::uint32_t height() const override { return buffer_.height(); }
  void* surface() const override { return surface_; }
  std::int32_t buffer_id() const override { return buffer_.buffer_id(); }
  std::uint32_t index() const override { return key_; }
  std::unique_lock<std::mutex> take_lock() override { return std::move(lock_); }
  std::int64_t timestamp() const override { return prepareTime_; }

 private:
  std::unique_lock<std::mutex> lock_;
  const AbstractBuffer& buffer_;
  void* const surface_;
  const std::uint32_t key_;
  const std::int64_t prepareTime_;
};

}  // namespace oct
