// Counts the calls that are inside an object, so that it can be taken apart once they have left.
#pragma once

#include <condition_variable>
#include <mutex>

namespace oct {

class Visitors {
 public:
  // False once closed.
  bool enter() {
    const std::lock_guard lock(mutex_);
    if (closed_) return false;
    ++inside_;
    return true;
  }

  void leave() {
    const std::lock_guard lock(mutex_);
    --inside_;
    // Under the lock: as soon as the count is seen to be zero, this object may be gone.
    condition_.notify_all();
  }

  // Lets nobody in any more.
  void close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
  }

  bool empty() const {
    const std::lock_guard lock(mutex_);
    return inside_ == 0;
  }

  // Blocks until everybody has left.
  void drain() {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [this] { return inside_ == 0; });
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable condition_;
  int inside_ = 0;
  bool closed_ = false;
};

}  // namespace oct
