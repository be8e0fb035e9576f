// A buffer of a control's ring: frames are rendered into it and handed to the client.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <utility>

#include "core/exception.h"

namespace oct {

// A client's view of a finished frame. Holds the buffer's lock for its whole life.
class MappedBuffer {
 public:
  MappedBuffer(std::unique_lock<std::mutex> lock, std::int32_t key, std::uint32_t width, std::uint32_t height,
               void* surface)
      : lock_(std::move(lock)),
        index_(static_cast<std::uint32_t>(key)),
        width_(width),
        height_(height),
        surface_(surface) {}

  std::uint32_t index() const { return index_; }  // key of the frame
  std::uint32_t width() const { return width_; }
  std::uint32_t height() const { return height_; }
  void* surface() const { return surface_; }

 private:
  const std::unique_lock<std::mutex> lock_;
  const std::uint32_t index_;
  const std::uint32_t width_;
  const std::uint32_t height_;
  void* const surface_;
};

// All but map runs on the thread of the context.
class HandOffBuffer {
 public:
  explicit HandOffBuffer(std::int32_t id) : id_(id) {}
  virtual ~HandOffBuffer() = default;
  HandOffBuffer(const HandOffBuffer&) = delete;
  HandOffBuffer& operator=(const HandOffBuffer&) = delete;

  virtual void release() = 0;  // deletes the OpenGL objects
  virtual void resize(std::uint32_t width, std::uint32_t height) = 0;
  virtual std::uint32_t width() const = 0;
  virtual std::uint32_t height() const = 0;
  virtual void prepare(std::int32_t request) = 0;  // begins a frame
  virtual void finish() = 0;                       // ends it

  // Whether the frame ended by finish can be mapped. With wait, blocks until it can and throws when the GPU
  // takes longer than a second. Runs under the buffer's lock.
  virtual bool complete(bool /*wait*/) { return true; }

  // Null while no frame is complete.
  virtual std::unique_ptr<MappedBuffer> map() = 0;

  std::unique_lock<std::mutex> lock() { return std::unique_lock(mutex_); }
  std::int32_t order_key() const { return order_key_; }  // of the last frame
  std::int32_t buffer_id() const { return id_; }

 protected:
  void begin(std::int32_t request) { order_key_ = request; }
  std::unique_ptr<MappedBuffer> mapped(std::unique_lock<std::mutex> lock, void* surface) const {
    return std::make_unique<MappedBuffer>(std::move(lock), order_key_, width(), height(), surface);
  }

 private:
  std::mutex mutex_;
  const std::int32_t id_;
  std::int32_t order_key_ = -1;
};

// Logs the reason and throws "Could not generate render target. ".
[[noreturn]] void render_target_failed(const char* reason, ErrorKind kind = ErrorKind::opengl);

// Fails so when OpenGL has reported an error, or when the target that is bound for drawing is not complete.
void check_render_target();

// Throws "Rendering could not finish within one second. ".
[[noreturn]] void rendering_took_too_long();

}  // namespace oct
