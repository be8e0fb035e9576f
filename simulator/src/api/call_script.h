// Failures and delays on command.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace oct::simulator {

// Makes calls fail, take long or hang that a test has chosen, counted from now.
// call: 1 for the next call, 0 for all calls
class CallScript {
 public:
  void fail(const std::string& function, int call, const std::string& message);

  // delay: how long a call waits before it does anything; none: until it is released
  void delay(const std::string& function, int call, std::optional<std::chrono::milliseconds> delay);

  void clear_failures();

  // Takes the delays back, and lets the calls go on that wait.
  void release();

  // Counts the calls that wait.
  int waiting() const;

  // Notes a call, and waits if it shall take long; throws std::runtime_error if it shall fail.
  void on_call(const char* function);

 private:
  struct Entry {
    int call;
    int seen = 0;
    std::string message;
  };
  struct Delay : Entry {
    std::optional<std::chrono::milliseconds> time;
  };

  mutable std::mutex mutex_;
  std::condition_variable released_;
  std::multimap<std::string, Entry> failures_;
  std::multimap<std::string, Delay> delays_;
  std::uint64_t releases_ = 0;
  int waiting_ = 0;
};

}  // namespace oct::simulator
