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

  // Appends the id unless it is queued already; wakes waiters in either case.
  void add(std::int32_t id) {
    {
      const std::lock_guard lock(mutex_);
      if (std::find(ids_.begin(), ids_.end(), id) == ids_.end()) ids_.push_back(id);
    }
    condition_.notify_all();
  }

  // Blocks until the queue is not empty. Removes nothing.
  void wait() {
    std::unique_lock lock(mutex_);
    condition_.wait(lock, [this] { return !ids_.empty(); });
  }

  bool empty() const {
    const std::lock_guard lock(mutex_);
    return ids_.empty();
  }

  // Passes over ids that draw nothing: a snapshot that is queued behind one would never come.
  Request front() const {
    const std::lock_guard lock(mutex_);
    const auto id =
        std::find_if(ids_.begin(), ids_.end(), [](std::int32_t any) { return any != no_request; });
    return id == ids_.end() ? Request() : Request(*id);
  }

  Request take() {
    const std::lock_guard lock(mutex_);
    if (ids_.empty()) return {};
    const std::int32_t id = ids_.front();
    ids_.pop_front();
    return id;
  }

  // Undoes a take, unless the id has been asked for again since.
  void put_back(std::int32_t id) {
    const std::lock_guard lock(mutex_);
    if (std::find(ids_.begin(), ids_.end(), id) == ids_.end()) ids_.push_front(id);
  }

  // Takes the front id and puts it at the back again.
  Request rotate() {
    const std::lock_guard lock(mutex_);
    if (ids_.empty()) return {};
    const std::int32_t id = ids_.front();
    ids_.pop_front();
    ids_.push_back(id);
    return id;
  }

 private:
  mutable std::mutex mutex_;
  std::condition_variable condition_;
  std::deque<std::int32_t> ids_;
};

}  // namespace oct
