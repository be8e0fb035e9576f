// A client's error function.
#pragma once

#include <string>

#include "core/timing_mark.h"

namespace oct {

class AbstractErrorFunctor {
 public:
  virtual ~AbstractErrorFunctor() = default;
  virtual void operator()(const std::string& message) const = 0;
};

class ErrorCallback : public AbstractErrorFunctor {
 public:
  using Function = void (*)(const char* message);

  ErrorCallback() = default;
  explicit ErrorCallback(Function function) : function_(function) {}

  void operator()(const std::string& message) const override {
    const TimingMark mark("ErrorCallback ", message);
    function_(message.c_str());
  }

  explicit operator bool() const { return function_ != nullptr; }

 private:
  Function function_ = nullptr;
};

}  // namespace oct
