// A client's error function.
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "core/timing_mark.h"

namespace oct {

class ErrorCallback {
 public:
  using Function = std::function<void(const char* message)>;

  ErrorCallback() = default;
  explicit ErrorCallback(Function function) : function_(std::move(function)) {}

  void operator()(const std::string& message) const {
    const TimingMark mark("ErrorCallback ", message);
    function_(message.c_str());
  }

  explicit operator bool() const { return function_ != nullptr; }

 private:
  Function function_;
};

}  // namespace oct
