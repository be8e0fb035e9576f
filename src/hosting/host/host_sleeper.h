// How the host thread sleeps. One source per platform: a thread that owns windows must answer their messages.
#pragma once

#include <memory>

namespace oct {

class HostSleeper {
 public:
  HostSleeper();
  ~HostSleeper();
  HostSleeper(const HostSleeper&) = delete;
  HostSleeper& operator=(const HostSleeper&) = delete;

  void sleep();  // until wake was called since the last sleep
  void wake();   // from any thread

 private:
  struct State;
  std::unique_ptr<State> state_;
};

}  // namespace oct
