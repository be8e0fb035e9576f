// An event that stays signalled until it is reset. One source per platform.
#pragma once

#include <chrono>
#include <memory>

namespace oct {

class ManualResetEvent {
 public:
  virtual ~ManualResetEvent() = default;
  virtual bool set() = 0;  // false when the system refuses
  virtual bool reset() = 0;
  virtual bool wait(std::chrono::milliseconds timeout) = 0;  // whether it was signalled in time

  // Not signalled; null when the system gives none.
  static std::unique_ptr<ManualResetEvent> create();
};

}  // namespace oct
