// Finished frames on their way from the render thread to the return thread.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <limits>
#include <map>
#include <mutex>

#include "core/timing_mark.h"

namespace oct {

class HandOffBuffer;

// Keys take turns: a client that is slower than the loop gets the frames of all, not of the smallest alone.
class ReturnMap {
 public:
  // An entry with the same key gets the new buffer.
  void insert(std::int32_t key, HandOffBuffer* buffer) {
    {
      const std::lock_guard lock(mutex_);
      frames_[key] = {buffer, begin_timing_wait()};
    }
    condition_.notify_all();
  }

  // Nothing will be taken any more, not even what waits.
  void close() {
    {
      const std::lock_guard lock(mutex_);
      closed_ = true;
    }
    condition_.notify_all();
  }

  // Blocks until there is an entry, removes the one with the smallest key above the last one that was taken,
  // or else the smallest of all, and returns its buffer. The buffer counts as waiting until returned() is
  // called. Null once closed.
  HandOffBuffer* take() {
    Finished frame;
    {
      std::unique_lock lock(mutex_);
      condition_.wait(lock, [this] { return closed_ || !frames_.empty(); });
      if (closed_) return nullptr;
      auto entry = frames_.upper_bound(last_key_);
      if (entry == frames_.end()) entry = frames_.begin();
      last_key_ = entry->first;
      frame = entry->second;
      taken_ = frame.buffer;
      frames_.erase(entry);
    }
    record_timing_wait("frame waits for the client", frame.since);
    return frame.buffer;
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
  // what the condition looks at calls wake afterwards. Whether it has been returned.
  template <class GiveUp>
  bool wait_until_returned(const HandOffBuffer* buffer, GiveUp&& give_up) {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [&] { return give_up() || !holds(buffer); });
    return !holds(buffer);
  }

  void wake() {
    { const std::lock_guard lock(mutex_); }
    condition_.notify_all();
  }

 private:
  struct Finished {
    HandOffBuffer* buffer = nullptr;
    TimingListener::Time since;
  };

  bool holds(const HandOffBuffer* buffer) const {
    return taken_ == buffer || std::any_of(frames_.begin(), frames_.end(),
                                           [&](const auto& entry) { return entry.second.buffer == buffer; });
  }

  std::mutex mutex_;
  std::condition_variable condition_;
  std::map<std::int32_t, Finished> frames_;
  std::int32_t last_key_ = std::numeric_limits<std::int32_t>::max();
  HandOffBuffer* taken_ = nullptr;
  bool closed_ = false;
};

}  // namespace oct
