#include "live/manual_reset_event.h"

#include <condition_variable>
#include <mutex>

namespace oct {
namespace {

class ConditionEvent : public ManualResetEvent {
 public:
  bool set() override {
    {
      const std::lock_guard lock(mutex_);
      signalled_ = true;
    }
    condition_.notify_all();
    return true;
  }

  bool reset() override {
    const std::lock_guard lock(mutex_);
    signalled_ = false;
    return true;
  }

  bool wait(std::chrono::milliseconds timeout) override {
    std::unique_lock lock(mutex_);
    return condition_.wait_for(lock, timeout, [this] { return signalled_; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
  bool signalled_ = false;
};

}  // namespace

std::unique_ptr<ManualResetEvent> ManualResetEvent::create() {
  return std::make_unique<ConditionEvent>();
}

}  // namespace oct
