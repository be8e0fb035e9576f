// An event that one thread signals with a value and others wait for.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

namespace oct {

class SignalEvent {
 public:
  // With autoReset a successful wait clears the event again.
  explicit SignalEvent(bool autoReset = false) : auto_reset_(autoReset) {}

  void signal(std::uint32_t value) {
    signal_if(value, [] { return true; });
  }

  // Signals if the condition holds; nobody can clear the event between the two.
  template <class Condition>
  void signal_if(std::uint32_t value, Condition&& condition) {
    {
      const std::lock_guard lock(mutex_);
      if (!condition()) return;
      signalled_ = true;
      value_ = value;
    }
    condition_.notify_all();
  }

  // Calls the action and signals, unless the event is signalled already: its value stays until it is cleared.
  template <class Action>
  void signal_first(std::uint32_t value, Action&& action) {
    {
      const std::lock_guard lock(mutex_);
      if (signalled_) return;
      action();
      signalled_ = true;
      value_ = value;
    }
    condition_.notify_all();
  }

  // Clears the event and calls the action before anybody can signal again.
  template <class Action>
  void clear(Action&& action) {
    const std::lock_guard lock(mutex_);
    signalled_ = false;
    action();
  }

  // Blocks until the event is signalled, calls the action before it can be signalled or cleared again, and
  // returns the value.
  template <class Action>
  std::uint32_t wait(Action&& action) {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [this] { return signalled_; });
    if (auto_reset_) signalled_ = false;
    action();
    return value_;
  }

  // Calls the action while nobody can signal or clear.
  template <class Action>
  auto guarded(Action&& action) {
    const std::lock_guard lock(mutex_);
    return action();
  }

 private:
  std::mutex mutex_;
  std::condition_variable condition_;
  bool signalled_ = false;
  std::uint32_t value_ = 0xFFFFFFFFU;
  const bool auto_reset_;
};

}  // namespace oct
