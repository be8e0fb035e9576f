// An event that one thread signals and others wait for.
#pragma once

#include <condition_variable>
#include <mutex>

namespace oct {

class SignalEvent {
 public:
  // With autoReset a wait clears the event again; otherwise it stays signalled for good.
  explicit SignalEvent(bool autoReset = false) : auto_reset_(autoReset) {}

  void signal() {
    {
      const std::lock_guard lock(mutex_);
      signalled_ = true;
    }
    condition_.notify_all();
  }

  void wait() {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [this] { return signalled_; });
    if (auto_reset_) signalled_ = false;
  }

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
  bool signalled_ = false;
  const bool auto_reset_;
};

}  // namespace oct
