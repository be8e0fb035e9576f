// The client's functions of a control loop. Empty ones are not called.
#pragma once

#include <cstdint>
#include <functional>
#include <utility>

#include "core/log.h"
#include "core/timing_mark.h"

namespace oct {

using Callback = std::function<void()>;
using RenderingCallback = std::function<void(std::uint32_t id)>;

class ImageReadyCallback {
 public:
  using Function =
      std::function<void(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface)>;

  explicit ImageReadyCallback(Function function) : function_(std::move(function)) {}

  void operator()(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface) const {
    const TimingMark mark("Image ready callback");
    if (function_) {
      function_(index, width, height, surface);
    } else {
      log() << "Warning: returning image withoug callback being specified. ";
    }
  }

 private:
  Function function_;
};

}  // namespace oct
