// Named marks around the phases of the library's work. They cost one atomic load while nobody listens.
#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>

namespace oct {

// Receives the marks of all threads, on the thread that sets them. Marks of one thread nest: each end belongs
// to the latest open begin of its thread.
class TimingListener {
 public:
  using Time = std::chrono::steady_clock::time_point;

  virtual ~TimingListener() = default;
  virtual void begin(std::string_view name, std::uint32_t thread_id, Time time) = 0;
  virtual void end(std::string_view name, std::uint32_t thread_id, Time time) = 0;
  virtual void instant(std::string_view name, std::uint32_t thread_id, Time time) = 0;
};

// Null removes the listener. A listener must outlive the marks that were opened while it was set, because
// each mark ends where it began.
void set_timing_listener(TimingListener* listener);

// A phase: begins with the object and ends with it. The detail is appended to the name, joined only if
// somebody listens.
class TimingMark {
 public:
  explicit TimingMark(std::string_view name, std::string_view detail = {});
  ~TimingMark();
  TimingMark(const TimingMark&) = delete;
  TimingMark& operator=(const TimingMark&) = delete;

 private:
  TimingListener* const listener_;
  std::string name_;
};

// A point in time.
void record_timing_mark(std::string_view name);

}  // namespace oct
