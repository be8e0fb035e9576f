// A target that a control renders its frames into.
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <mutex>

namespace oct {

inline std::int64_t nanosecondsNow() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration_cast<std::chrono::nanoseconds>(now).count();
}

// A client's view of a finished frame. Holds the buffer's lock for its whole life, unless the lock is taken
// away.
class AbstractMappedBuffer {
 public:
  virtual ~AbstractMappedBuffer() = default;
  virtual std::uint32_t width() const = 0;
  virtual std::uint32_t height() const = 0;
  virtual void* surface() const = 0;
  virtual std::int32_t buffer_id() const = 0;
  virtual std::uint32_t index() const = 0;  // key of the frame
  virtual std::unique_lock<std::mutex> take_lock() = 0;
  virtual std::int64_t timestamp() const = 0;  // when the frame was begun, in nanoseconds
};

class AbstractBuffer {
 public:
  virtual ~AbstractBuffer() = default;
  virtual void set_up() = 0;   // one-time hook after construction
  virtual void release() = 0;  // deletes the OpenGL objects
  virtual void resize(std::uint32_t width, std::uint32_t height) = 0;
  virtual std::uint32_t width() const = 0;
  virtual std::uint32_t height() const = 0;
  virtual bool is_offscreen() const = 0;       // whether its frames stay out of the return thread's hands
  virtual std::int32_t order_key() const = 0;  // key of the last frame
  virtual void prepare(std::int32_t request) = 0;
  virtual void finish() = 0;
  virtual std::int64_t timestamp() const = 0;  // now, in nanoseconds
  virtual void read_pixels(void* data) = 0;    // BGRA, bottom row first, width x height x 4 bytes
  virtual std::int32_t buffer_id() const = 0;
  virtual std::unique_lock<std::mutex> lock() = 0;
  virtual std::unique_ptr<AbstractMappedBuffer> map() = 0;

  // Whether the frame ended by finish can be mapped. With wait, blocks until it can and throws when the GPU
  // takes longer than a second. Runs on the thread of the context, under the buffer's lock.
  virtual bool complete(bool /*wait*/) { return true; }
};

}  // namespace oct
