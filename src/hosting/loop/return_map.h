// Finished frames on their way from the render thread to the return thread, smallest key first.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>

namespace oct {

class HandOffBuffer;

class ReturnMap {
 public:
  // An entry with the same key gets the new buffer. Null wakes the return thread for its end.
  void insert(std::int32_t key, HandOffBuffer* buffer) {
    {
      const std::lock_guard lock(mutex_);
      buffers_[key] = buffer;
    }
    condition_.notify_all();
  }

  // Blocks until there is an entry, removes the one with the smallest key and returns its buffer. The buffer
  // counts as waiting until returned() is called.
  HandOffBuffer* take() {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [this] { return !buffers_.empty(); });
    taken_ = buffers_.begin()->second;
    buffers_.erase(buffers_.begin());
    return taken_;
  }

  // The client has seen the taken buffer, or nobody wants it.
  void returned() {
    {
      const std::lock_guard lock(mutex_);
      taken_ = nullptr;
    }
    condition_.notify_all();
  }

  // Blocks until the buffer's frame has been returned, or until the condition says to give up; who changes
  // what the condition looks at calls wake afterwards.
  template <class GiveUp>
  void wait_until_returned(const HandOffBuffer* buffer, GiveUp&& give_up) {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [&] { return give_up() || !holds(buffer); });
  }

  void wake() {
    { const std::lock_guard lock(mutex_); }
    condition_.notify_all();
  }

 private:
  bool holds(const HandOffBuffer* buffer) const {
    return taken_ == buffer || std::any_of(buffers_.begin(), buffers_.end(),
                                           [&](const auto& entry) { return entry.second == buffer; });
  }

  std::mutex mutex_;
  std::condition_variable condition_;
  std::map<std::int32_t, HandOffBuffer*> buffers_;
  HandOffBuffer* taken_ = nullptr;
};

}  // namespace oct
