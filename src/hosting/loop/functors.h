// The client's functions of a control loop, wrapped so that they can be switched off.
#pragma once

#include <cstdint>
#include <mutex>

#include "core/log.h"
#include "core/timing_mark.h"

namespace oct {

template <class... Arguments>
class AbstractSwitchable {
 public:
  virtual ~AbstractSwitchable() = default;
  virtual void operator()(Arguments... arguments) = 0;
  virtual void set_enabled(bool enabled) = 0;
};

using AbstractFunctor = AbstractSwitchable<>;
using AbstractRenderingFunctor = AbstractSwitchable<std::uint32_t>;  // request id
using AbstractImageReady =
    AbstractSwitchable<std::uint32_t, std::uint32_t, std::uint32_t, void*>;  // index, width, height, surface

// Calls a function of the client's, one call at a time. Null is no function.
template <class... Arguments>
class SwitchableFunction : public AbstractSwitchable<Arguments...> {
 public:
  using Function = void (*)(Arguments...);
  explicit SwitchableFunction(Function function) : function_(function) {}

  void operator()(Arguments... arguments) override {
    const std::lock_guard lock(mutex_);
    if (enabled_ && function_) function_(arguments...);
  }
  void set_enabled(bool enabled) override {
    const std::lock_guard lock(mutex_);
    enabled_ = enabled;
  }

 protected:
  const Function function_;

 private:
  bool enabled_ = true;
  std::mutex mutex_;
};

using Callback = SwitchableFunction<>;
using RenderingCallback = SwitchableFunction<std::uint32_t>;

class ImageReadyCallback : public SwitchableFunction<std::uint32_t, std::uint32_t, std::uint32_t, void*> {
 public:
  using SwitchableFunction::SwitchableFunction;

  void operator()(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface) override {
    const TimingMark mark("Image ready callback");
    if (!function_) log() << "Warning: returning image withoug callback being specified. ";
    SwitchableFunction::operator()(index, width, height, surface);
  }
};

}  // namespace oct
