// The client's functions of a control loop, wrapped so that they can be switched off.
#pragma once

#include <cstdint>
#include <mutex>

#include "core/log.h"
#include "core/timing_mark.h"

namespace oct {

class AbstractFunctor {
 public:
  virtual ~AbstractFunctor() = default;
  virtual void operator()() = 0;
  virtual void set_enabled(bool enabled) = 0;
};

class AbstractRenderingFunctor {
 public:
  virtual ~AbstractRenderingFunctor() = default;
  virtual void operator()(std::uint32_t request) = 0;
  virtual void set_enabled(bool enabled) = 0;
};

class AbstractImageReady {
 public:
  virtual ~AbstractImageReady() = default;
  virtual void operator()(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface) = 0;
  virtual void set_enabled(bool enabled) = 0;
};

class Callback : public AbstractFunctor {
 public:
  using Function = void (*)();
  explicit Callback(Function function) : function_(function) {}

  void operator()() override {
    const std::lock_guard lock(mutex_);
    if (enabled_ && function_) function_();
  }
  void set_enabled(bool enabled) override {
    const std::lock_guard lock(mutex_);
    enabled_ = enabled;
  }

 private:
  const Function function_;
  bool enabled_ = true;
  std::mutex mutex_;
};

class RenderingCallback : public AbstractRenderingFunctor {
 public:
  using Function = void (*)(unsigned int request);
  explicit RenderingCallback(Function function) : function_(function) {}

  void operator()(std::uint32_t request) override {
    const std::lock_guard lock(mutex_);
    if (enabled_ && function_) function_(request);
  }
  void set_enabled(bool enabled) override {
    const std::lock_guard lock(mutex_);
    enabled_ = enabled;
  }

 private:
  const Function function_;
  bool enabled_ = true;
  std::mutex mutex_;
};

class ImageReadyCallback : public AbstractImageReady {
 public:
  using Function = void (*)(unsigned int index, unsigned int width, unsigned int height, void* surface);
  explicit ImageReadyCallback(Function function) : function_(function) {}

  void operator()(std::uint32_t index, std::uint32_t width, std::uint32_t height, void* surface) override {
    const TimingMark mark("Image ready callback");
    const std::lock_guard lock(mutex_);
    if (!function_) {
      log() << "Warning: returning image withoug callback being specified. ";
    } else if (enabled_) {
      function_(index, width, height, surface);
    }
  }
  void set_enabled(bool enabled) override {
    const std::lock_guard lock(mutex_);
    enabled_ = enabled;
  }

 private:
  const Function function_;
  bool enabled_ = true;
  std::mutex mutex_;
};

}  // namespace oct
