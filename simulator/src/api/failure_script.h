// Failures on command.
#pragma once

#include <map>
#include <mutex>
#include <string>

namespace oct::simulator {

// Makes calls fail that a test has chosen.
class FailureScript {
 public:
  // Fails a call of a function, counted from now.
  // call: 1 for the next call, 0 for all calls
  void add(const std::string& function, int call, const std::string& message);

  void clear();

  // Notes a call; throws std::runtime_error if it shall fail.
  void on_call(const char* function);

 private:
  struct Failure {
    int call;
    int seen;
    std::string message;
  };

  std::mutex mutex_;
  std::multimap<std::string, Failure> failures_;
};

}  // namespace oct::simulator
