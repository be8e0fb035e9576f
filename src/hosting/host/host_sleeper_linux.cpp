#include "hosting/host/host_sleeper.h"

#include "hosting/host/signal_event.h"

namespace oct {

struct HostSleeper::State {
  SignalEvent event{true};
};

HostSleeper::HostSleeper() : state_(std::make_unique<State>()) {}
HostSleeper::~HostSleeper() = default;

void HostSleeper::sleep() {
  state_->event.wait();
}

void HostSleeper::wake() {
  state_->event.signal();
}

}  // namespace oct
