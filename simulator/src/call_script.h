/// @file
/// Failures on command, and a record of what was called.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <vector>

namespace oct::simulator {

/// Makes calls fail that a test has chosen.
class FailureScript {
 public:
  /// Fails a call of a function, counted from now.
  /// @param call 1 for the next call, 0 for all calls
  void add(const std::string& function, int call, const std::string& message);

  void clear();

  /// Notes a call; throws std::runtime_error if it shall fail.
  void onCall(const char* function);

 private:
  struct Failure {
    int call;
    int seen;
    std::string message;
  };

  std::mutex mutex_;
  std::multimap<std::string, Failure> failures_;
};

/// The texts of all calls since recording began.
class CallRecord {
 public:
  /// Begins an empty record, or ends recording and keeps the record.
  void enable(bool enabled);

  void add(std::string text);
  int count() const;

  /// Throws std::out_of_range if there are fewer calls.
  std::string at(int index) const;

  bool isEnabled() const;

 private:
  mutable std::mutex mutex_;
  bool enabled_ = false;
  std::vector<std::string> calls_;
};

}  // namespace oct::simulator
