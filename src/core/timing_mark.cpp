#include "core/timing_mark.h"

#include <atomic>

#include "core/platform.h"

namespace oct {
namespace {

std::atomic<TimingListener*> current_listener{nullptr};

}  // namespace

void set_timing_listener(TimingListener* listener) {
  current_listener.store(listener, std::memory_order_release);
}

TimingMark::TimingMark(std::string_view name, std::string_view detail)
    : listener_(current_listener.load(std::memory_order_acquire)) {
  if (!listener_) return;
  name_.reserve(name.size() + detail.size());
  name_.append(name).append(detail);
  listener_->begin(name_, current_thread_id(), std::chrono::steady_clock::now());
}

TimingMark::~TimingMark() {
  if (listener_) listener_->end(name_, current_thread_id(), std::chrono::steady_clock::now());
}

void record_timing_mark(std::string_view name) {
  TimingListener* const listener = current_listener.load(std::memory_order_acquire);
  if (listener) listener->instant(name, current_thread_id(), std::chrono::steady_clock::now());
}

}  // namespace oct
