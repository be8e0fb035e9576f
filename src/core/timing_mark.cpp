#include "core/timing_mark.h"

#include <atomic>

#include "core/platform.h"

namespace oct {
namespace {

std::atomic<TimingListener*> currentListener{nullptr};

}  // namespace

void setTimingListener(TimingListener* listener) {
  currentListener.store(listener, std::memory_order_release);
}

TimingMark::TimingMark(std::string_view name, std::string_view detail)
    : listener_(currentListener.load(std::memory_order_acquire)) {
  if (!listener_) return;
  name_.reserve(name.size() + detail.size());
  name_.append(name).append(detail);
  listener_->begin(name_, currentThreadId(), std::chrono::steady_clock::now());
}

TimingMark::~TimingMark() {
  if (listener_) listener_->end(name_, currentThreadId(), std::chrono::steady_clock::now());
}

void recordTimingMark(std::string_view name) {
  TimingListener* const listener = currentListener.load(std::memory_order_acquire);
  if (listener) listener->instant(name, currentThreadId(), std::chrono::steady_clock::now());
}

}  // namespace oct
