#include "core/timing_mark.h"

#include <array>
#include <limits>
#include <mutex>
#include <new>
#include <thread>

#include "core/exception.h"
#include "core/immortal.h"
#include "core/platform.h"

namespace oct {

namespace detail {
constinit std::atomic<unsigned> timing_listeners{0};
}

namespace {

using std::chrono::steady_clock;

// A listener's place. Taken anew only when nobody is within a call of the one before.
struct Place {
  std::atomic<TimingListener*> listener{nullptr};
  std::atomic<const TimingListener*> latest{nullptr};  // the same, still there after it was removed
  std::atomic<std::uint64_t> number{0};                // of the listener; they only grow
  std::atomic<unsigned> calls{0};  // that are running, or about to find out that there is none
};

constinit std::array<Place, 4> places;
constinit std::atomic<std::uint64_t> latest_number{1};
constinit thread_local bool in_call = false;

constexpr auto pause = std::chrono::microseconds(50);

std::mutex& places_mutex() {
  return immortal<std::mutex>();
}

class RunningCall {
 public:
  explicit RunningCall(Place& place) : place_(place) { ++place_.calls; }
  ~RunningCall() { --place_.calls; }
  RunningCall(const RunningCall&) = delete;
  RunningCall& operator=(const RunningCall&) = delete;

 private:
  Place& place_;
};

// Calls those with a number up to the given one.
template <class Call>
void tell(std::uint64_t up_to, Call&& call) noexcept {
  const TimingCall within;
  for (Place& place : places) {
    if (!place.listener.load(std::memory_order_relaxed)) continue;
    const RunningCall running(place);
    // After the call counts as running: who removes the listener either waits for it, or it is seen to be gone.
    TimingListener* const listener = place.listener;
    if (!listener || place.number > up_to) continue;
    try {
      call(*listener);
    } catch (...) {
      // A lost mark is better than a lost frame.
    }
  }
}

}  // namespace

void add_timing_listener(TimingListener& listener) {
  const std::lock_guard lock(places_mutex());
  for (Place& place : places) {
    if (place.listener || place.calls != 0) continue;
    // The number is given out last: a mark that has it hears its begin and its end.
    place.number = latest_number + 1;
    place.latest = &listener;
    place.listener = &listener;
    ++latest_number;
    ++detail::timing_listeners;
    return;
  }
  throw StateError("Too many listen to the timing marks. ");
}

void remove_timing_listener(const TimingListener& listener) noexcept {
  const std::lock_guard lock(places_mutex());
  for (Place& place : places) {
    if (place.listener != &listener) continue;
    place.listener = nullptr;
    --detail::timing_listeners;
  }
}

void await_timing_calls(const TimingListener& listener) noexcept {
  if (in_call) return;
  for (const Place& place : places) {
    while (place.latest == &listener && !place.listener && place.calls != 0)
      std::this_thread::sleep_for(pause);
  }
}

bool in_timing_call() {
  return in_call;
}

TimingCall::TimingCall() : before_(in_call) {
  in_call = true;
}
TimingCall::~TimingCall() {
  in_call = before_;
}

void TimingMark::begin(std::string_view name, std::string_view detail) noexcept {
  if (in_call) return;
  try {
    name_.reserve(name.size() + detail.size());
    name_.append(name).append(detail);
  } catch (const std::bad_alloc&) {
    return;
  }
  begun_ = latest_number;
  tell(begun_,
       [&](TimingListener& listener) { listener.begin(name_, current_thread_id(), steady_clock::now()); });
}

void TimingMark::end() noexcept {
  tell(begun_,
       [&](TimingListener& listener) { listener.end(name_, current_thread_id(), steady_clock::now()); });
}

void record_timing_mark(std::string_view name) noexcept {
  if (!has_timing_listener() || in_call) return;
  tell(std::numeric_limits<std::uint64_t>::max(),
       [&](TimingListener& listener) { listener.instant(name, current_thread_id(), steady_clock::now()); });
}

TimingListener::Time begin_timing_wait() {
  return has_timing_listener() ? steady_clock::now() : TimingListener::Time();
}

void record_timing_wait(std::string_view name, TimingListener::Time begin) noexcept {
  if (begin == TimingListener::Time() || !has_timing_listener() || in_call) return;
  const auto end = steady_clock::now();
  tell(std::numeric_limits<std::uint64_t>::max(),
       [&](TimingListener& listener) { listener.wait(name, begin, end); });
}

}  // namespace oct
