// A source of live volumes with an acquisition thread of its own.
#pragma once

#include <cstdint>
#include <memory>
#include <thread>

#include "core/error_callback.h"
#include "live/ref_intensity_functor.h"
#include "oct_device/oct_device_types.h"

namespace oct {

class AbstractLiveRendering;

class AbstractDataSource {
 public:
  virtual ~AbstractDataSource() = default;
  virtual void register_live_rendering(AbstractLiveRendering* rendering) = 0;  // not owned
  virtual void deregister_renderer() = 0;
  virtual void start(ScanPatternHandle pattern) = 0;
  virtual void stop() = 0;
  // Waits for a thread that has been asked to end or ends by itself; for no other, and not on the thread
  // itself.
  virtual void await_end() = 0;
  virtual void set_ref_intensity_callback(std::unique_ptr<RefIntensityFunctor> callback) = 0;
  virtual void set_error_callback(
      const ErrorCallback& callback) = 0;          // keeps a copy; an empty one removes it
  virtual void set_size_z(std::int32_t size) = 0;  // depth samples per A-scan that are kept
  virtual void set_camera(std::int32_t camera) = 0;
  virtual std::int32_t get_camera() = 0;
  virtual void set_refractive_index(double index) = 0;
  virtual void set_analog_input(bool enabled) = 0;

 protected:
  virtual void thread() = 0;  // the body of the acquisition thread
  virtual std::thread start_thread() = 0;
};

}  // namespace oct
