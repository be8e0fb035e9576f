#include "core/trace/timing_callback.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <utility>
#include <vector>

#include "core/immortal.h"
#include "core/timing_mark.h"

namespace oct {
namespace {

unsigned long long nanoseconds(TimingListener::Time time) {
  const auto since = std::chrono::duration_cast<std::chrono::nanoseconds>(time.time_since_epoch());
  return static_cast<unsigned long long>(since.count());
}

class TimingCallback : public TimingListener {
 public:
  explicit TimingCallback(const TimingFunctions& functions) : functions_(functions) {}

  void begin(std::string_view name, std::uint32_t thread, Time time) override {
    {
      const std::lock_guard lock(mutex_);
      open_[thread].emplace_back(name);
    }
    call(functions_.begin, std::string(name), thread, time);
  }

  void end(std::string_view name, std::uint32_t thread, Time time) override {
    {
      const std::lock_guard lock(mutex_);
      const auto found = open_.find(thread);
      if (found == open_.end()) return;  // its begin was lost for want of memory
      found->second.pop_back();
      if (found->second.empty()) open_.erase(found);
    }
    call(functions_.end, std::string(name), thread, time);
  }

  void instant(std::string_view name, std::uint32_t thread, Time time) override {
    call(functions_.instant, std::string(name), thread, time);
  }

  // Nobody waits for it to end; it is not called with what it has heard begin.
  void give_up() { given_up_ = true; }

  // Once it hears nothing any more. Who comes second waits.
  void end_all() {
    const std::lock_guard last(ending_);
    if (given_up_) return;
    std::map<std::uint32_t, std::vector<std::string>> open;
    {
      const std::lock_guard lock(mutex_);
      open.swap(open_);
    }
    const TimingCall within;
    const Time now = std::chrono::steady_clock::now();
    for (auto& [thread, names] : open) {
      for (; !names.empty(); names.pop_back()) call(functions_.end, names.back(), thread, now);
    }
  }

 private:
  void call(TimingFunctions::Function function, const std::string& name, std::uint32_t thread,
            Time time) const {
    if (function) function(name.c_str(), thread, nanoseconds(time), functions_.user);
  }

  const TimingFunctions functions_;
  std::atomic<bool> given_up_{false};
  std::mutex ending_;
  std::mutex mutex_;
  std::map<std::uint32_t, std::vector<std::string>> open_;  // phases of each thread
};

using Callbacks = std::vector<std::shared_ptr<TimingCallback>>;

// The current one, and those that may still be within a call.
struct HostCallbacks {
  std::mutex mutex;
  std::shared_ptr<TimingCallback> current;
  Callbacks replaced;

  // What it holds stays: other threads may be within a call.
  void close() {
    const std::unique_lock lock(mutex, std::try_to_lock);
    if (lock && current) remove_timing_listener(*current);
  }
};

HostCallbacks& host_callbacks() {
  return immortal<HostCallbacks>();
}

// Those that were replaced before this call.
Callbacks replace(const TimingFunctions& functions) {
  HostCallbacks& host = host_callbacks();
  auto next = functions.any() ? std::make_shared<TimingCallback>(functions) : nullptr;
  const std::lock_guard lock(host.mutex);
  host.replaced.reserve(host.replaced.size() + 1);
  if (next) add_timing_listener(*next);
  if (host.current) {
    remove_timing_listener(*host.current);
    if (in_timing_call()) host.current->give_up();
    host.replaced.push_back(std::move(host.current));
  }
  host.current = std::move(next);
  return host.replaced;
}

void forget(const Callbacks& gone) {
  const std::lock_guard lock(host_callbacks().mutex);
  std::erase_if(host_callbacks().replaced, [&](const auto& callback) {
    return std::find(gone.begin(), gone.end(), callback) != gone.end();
  });
}

}  // namespace

void set_timing_functions(const TimingFunctions& functions) {
  const Callbacks replaced = replace(functions);
  if (in_timing_call()) return;
  for (const auto& callback : replaced) {
    await_timing_calls(*callback);
    callback->end_all();
  }
  forget(replaced);
}

}  // namespace oct
