// A render target that lives in OpenGL alone and is read back into client memory when somebody asks.
#pragma once

#include "gl/render_target.h"
#include "hosting/surfaces/abstract_buffer.h"
#include "hosting/host/signal_event.h"

namespace oct {

// prepare, finish, read_pixels and release run on the thread that owns the context; resize, set_output_data
// and wait may run on another one.
class OffscreenBufferObject : public AbstractBuffer {
 public:
  void set_up() override {}
  void release() override;
  void resize(std::uint32_t width, std::uint32_t height) override;
  std::uint32_t width() const override;
  std::uint32_t height() const override;
  bool is_offscreen() const override { return true; }
  std::int32_t order_key() const override { return lastRequest_; }
  void prepare(std::int32_t request) override;
  void finish() override;
  std::int64_t timestamp() const override;
  void read_pixels(void* data) override;
  std::int32_t buffer_id() const override { return -1; }
  std::unique_lock<std::mutex> lock() override { return std::unique_lock(mutex_); }
  std::unique_ptr<AbstractMappedBuffer> map() override { return nullptr; }

  // Client memory that a coming finish fills: the first one whose frame was prepared at the size set last.
  void set_output_data(void* data);

  // Blocks until a frame has been finished after set_output_data. False when cancelled.
  bool wait();

  // Forgets the client memory and lets every waiter go: no frame will come.
  void cancel();

 private:
  struct Size {
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const Size&) const = default;
  };

  Size size() const;
  void detach();

  gl::RenderTarget target_;
  Size size_;       // requested; guarded by done_'s mutex
  Size frameSize_;  // of the frame under way
  std::int32_t lastRequest_ = -1;
  mutable SignalEvent done_;
  std::mutex mutex_;
  void* outputData_ = nullptr;  // guarded by done_'s mutex
};

}  // namespace oct
