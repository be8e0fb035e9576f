// The frames that clients of a control loop have asked for.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

namespace oct {

inline constexpr std::int32_t no_request = -1;  // an id that draws nothing

class RequestQueue {
 public:
  using Request = std::optional<std::int32_t>;  // nothing: the queue was empty

  struct Content {
    bool any;       // an id is queued
    bool drawable;  // one that draws something
  };

  // Appends the id unless it is queued already; wakes waiters in either case.
  void add(std::int32_t id) {
    {
      const std::lock_guard lock(mutex_);
      if (std::find(ids_.begin(), ids_.end(), id) == ids_.end()) ids_.push_back(id);
    }
    condition_.notify_all();
  }

  Content content() const {
    const std::lock_guard lock(mutex_);
    return {!ids_.empty(), first_drawable() != ids_.end()};
  }

  // Blocks until the condition, which is given the content, holds; who changes what else it looks at calls
  // wake afterwards. The condition must not call back. Removes nothing.
  template <class Condition>
  void wait(Condition&& condition) {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [&] { return condition(Content{!ids_.empty(), first_drawable() != ids_.end()}); });
  }

  void wake() {
    { const std::lock_guard lock(mutex_); }
    condition_.notify_all();
  }

  // Passes over ids that draw nothing: whatever is queued behind one would never come.
  Request front() const {
    const std::lock_guard lock(mutex_);
    const auto id = first_drawable();
    return id == ids_.end() ? Request() : Request(*id);
  }

  Request take() {
    const std::lock_guard lock(mutex_);
    if (ids_.empty()) return {};
    const std::int32_t id = ids_.front();
    ids_.pop_front();
    return id;
  }

  // Takes the front id and puts it at the back again.
  Request rotate() {
    const std::lock_guard lock(mutex_);
    if (ids_.empty()) return {};
    std::rotate(ids_.begin(), ids_.begin() + 1, ids_.end());
    return ids_.back();
  }

 private:
  std::deque<std::int32_t>::const_iterator first_drawable() const {
    return std::find_if(ids_.begin(), ids_.end(), [](std::int32_t id) { return id != no_request; });
  }

  mutable std::mutex mutex_;
  std::condition_variable condition_;
  std::deque<std::int32_t> ids_;
};

}  // namespace oct
