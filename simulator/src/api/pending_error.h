// The error that waits to be fetched.
#pragma once

#include <array>
#include <mutex>

namespace oct::simulator {

// Holds the first error since the last was fetched. Needs no memory beyond its own, so that running out of
// memory can be reported too.
class PendingError {
 public:
  // Stores an error unless one is pending.
  void set(const char* function, const char* message);

  bool is_set() const;

  // Copies the text, cut to fit, and takes the error back; keeps it if there is no room for any text.
  // Returns whether an error was pending
  bool take(char* buffer, int size);

 private:
  mutable std::mutex mutex_;
  bool is_set_ = false;
  std::array<char, 512> text_{};
};

}  // namespace oct::simulator
