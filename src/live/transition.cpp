#include "live/transition.h"

namespace oct {

void Transition::request(LiveState state) {
  const std::lock_guard lock(mutex_);
  promise_ = std::promise<void>();
  signalled_ = false;
  state_ = state;
  ++number_;
}

void Transition::request_stop() {
  const std::lock_guard lock(mutex_);
  state_ = LiveState::deinitialize_requested;
  ++number_;
  if (!signalled_) promise_.set_value();
  signalled_ = true;
}

Transition::Request Transition::observe() const {
  const std::lock_guard lock(mutex_);
  return {state_, number_};
}

void Transition::complete_start(const Request& request) {
  const std::lock_guard lock(mutex_);
  if (!current(request)) return;
  state_ = LiveState::running;
  promise_.set_value();
  signalled_ = true;
}

void Transition::complete_stop(const Request& request) {
  const std::lock_guard lock(mutex_);
  if (current(request)) state_ = LiveState::stopped;
}

void Transition::wait() {
  std::future<void> kept;
  {
    const std::lock_guard lock(mutex_);
    kept = promise_.get_future();
  }
  kept.get();
}

}  // namespace oct
