// The frames that clients of a control loop have asked for.
#pragma once

#include <algorithm>
#include <condition_variable>
#include <cstdint>
#include <deque>
#include <mutex>
#include <optional>

#include "core/timing_mark.h"

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
      if (std::ranges::find(requests_, id, &Queued::id) == requests_.end())
        requests_.push_back({id, begin_timing_wait()});
    }
    condition_.notify_all();
  }

  Content content() const {
    const std::lock_guard lock(mutex_);
    return {!requests_.empty(), first_drawable() != requests_.end()};
  }

  // Blocks until the condition, which is given the content, holds; who changes what else it looks at calls
  // wake afterwards. The condition must not call back. Removes nothing.
  template <class Condition>
  void wait(Condition&& condition) {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [&] {
      return condition(Content{!requests_.empty(), first_drawable() != requests_.end()});
    });
  }

  void wake() {
    { const std::lock_guard lock(mutex_); }
    condition_.notify_all();
  }

  // Passes over ids that draw nothing: whatever is queued behind one would never come.
  Request front() const {
    const std::lock_guard lock(mutex_);
    const auto request = first_drawable();
    return request == requests_.end() ? Request() : Request(request->id);
  }

  Request take() {
    Queued request;
    {
      const std::lock_guard lock(mutex_);
      if (requests_.empty()) return {};
      request = requests_.front();
      requests_.pop_front();
    }
    record_timing_wait("request waits", request.since);
    return request.id;
  }

  // Takes the front id and puts it at the back again.
  Request rotate() {
    const std::lock_guard lock(mutex_);
    if (requests_.empty()) return {};
    std::rotate(requests_.begin(), requests_.begin() + 1, requests_.end());
    return requests_.back().id;
  }

 private:
  struct Queued {
    std::int32_t id = no_request;
    TimingListener::Time since;
  };

  std::deque<Queued>::const_iterator first_drawable() const {
    return std::ranges::find_if(requests_, [](const Queued& request) { return request.id != no_request; });
  }

  mutable std::mutex mutex_;
  std::condition_variable condition_;
  std::deque<Queued> requests_;
};

}  // namespace oct
