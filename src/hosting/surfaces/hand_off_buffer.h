// What the buffers of the ring have in common, whatever their frames reach the client in.
#pragma once

#include "hosting/surfaces/abstract_buffer.h"

namespace oct {

class HandOffBuffer : public AbstractBuffer {
 public:
  explicit HandOffBuffer(std::int32_t index) : index_(index) {}
  HandOffBuffer(const HandOffBuffer&) = delete;
  HandOffBuffer& operator=(const HandOffBuffer&) = delete;

  void set_up() override {}
  bool is_offscreen() const override { return false; }
  std::int32_t order_key() const override { return orderKey_; }
  std::int64_t timestamp() const override { return nanosecondsNow(); }
  std::int32_t buffer_id() const override { return index_; }
  std::unique_lock<std::mutex> lock() override { return std::unique_lock(mutex_); }
  std::int64_t prepare_time() const { return prepareTime_; }

 protected:
  // Notes that a frame begins.
  void begin(std::int32_t request) {
    orderKey_ = request;
    prepareTime_ = nanosecondsNow();
  }

 private:
  std::mutex mutex_;
  const std::int32_t index_;
  std::int32_t orderKey_ = -1;
  std::int64_t prepareTime_ = 0;  // nanoseconds
};

// Logs the reason and throws "Could not generate render target. ".
[[noreturn]] void renderTargetFailed(const char* reason);

// Throws "Rendering could not finish within one second. ".
[[noreturn]] void renderingTookTooLong();

}  // namespace oct
