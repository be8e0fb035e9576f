// Named marks around the phases of the library's work. They cost one atomic load while nobody listens.
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace oct {

// Receives the marks of all threads, on the thread that sets them. Marks of one thread nest: each end belongs
// to the latest open begin of its thread. What a listener throws is lost, and so are the marks that its own
// work would set.
class TimingListener {
 public:
  using Time = std::chrono::steady_clock::time_point;

  virtual ~TimingListener() = default;
  virtual void begin(std::string_view name, std::uint32_t thread_id, Time time) = 0;
  virtual void end(std::string_view name, std::uint32_t thread_id, Time time) = 0;
  virtual void instant(std::string_view name, std::uint32_t thread_id, Time time) = 0;
  // Something that waited, told when its wait is over. Waits begin on one thread and end on another, and overlap.
  virtual void wait(std::string_view, Time /*begin*/, Time /*end*/) {}
};

// Hears what begins from now on. Throws a StateError when there are too many listeners.
void add_timing_listener(TimingListener& listener);

// Begins no further call of the listener, not for the ends of open marks either.
void remove_timing_listener(const TimingListener& listener) noexcept;

// Waits until no call of a listener that was removed is running. Does nothing within a call of a listener, which would
// wait for itself.
void await_timing_calls(const TimingListener& listener) noexcept;

// Whether the calling thread is within a call of a listener.
bool in_timing_call();

// Marks that the calling thread sets while this lives are heard by nobody.
class TimingCall {
 public:
  TimingCall();
  ~TimingCall();
  TimingCall(const TimingCall&) = delete;
  TimingCall& operator=(const TimingCall&) = delete;

 private:
  const bool before_;
};

namespace detail {
extern std::atomic<unsigned> timing_listeners;
}

inline bool has_timing_listener() {
  return detail::timing_listeners.load(std::memory_order_acquire) != 0;
}

// A phase: begins with the object and ends with it. The detail is appended to the name, joined only if
// somebody listens. The end goes to those who heard the begin.
class TimingMark {
 public:
  explicit TimingMark(std::string_view name, std::string_view detail = {}) {
    if (has_timing_listener()) begin(name, detail);
  }
  ~TimingMark() {
    if (begun_ != 0) end();
  }
  TimingMark(const TimingMark&) = delete;
  TimingMark& operator=(const TimingMark&) = delete;

 private:
  void begin(std::string_view name, std::string_view detail) noexcept;
  void end() noexcept;

  std::uint64_t begun_ = 0;  // the latest listener by then; 0: nobody heard
  std::string name_;
};

// A point in time.
void record_timing_mark(std::string_view name) noexcept;

// The beginning of something that may wait, for record_timing_wait; no time while nobody listens.
TimingListener::Time begin_timing_wait();
// That it waited from then until now. Without a time nothing is recorded.
void record_timing_wait(std::string_view name, TimingListener::Time begin) noexcept;

}  // namespace oct
