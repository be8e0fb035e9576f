// Acquires volumes from one device and feeds them into a live renderer.
#pragma once

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>

#include "core/error_callback.h"
#include "core/extent.h"
#include "live/device_library.h"

namespace oct {

class FastOpenGLVolumeRenderer;
class VolumeRenderer;

using RefIntensityCallback = std::function<void(double intensity)>;

class BrennickDataSource {
 public:
  // The handles are the device library's and outlive the source.
  BrennickDataSource(std::shared_ptr<const DeviceLibrary> library, OCTDeviceHandle device,
                     ProcessingHandle processing);
  virtual ~BrennickDataSource();
  BrennickDataSource(const BrennickDataSource&) = delete;
  BrennickDataSource& operator=(const BrennickDataSource&) = delete;

  // Throws while the thread lives: it and stop must mean the same renderer.
  void register_live_rendering(FastOpenGLVolumeRenderer* rendering);  // not owned
  // Does nothing while the thread lives.
  void deregister_renderer();

  // Throws while the thread lives, instead of waiting for it: the caller may hold a lock that a client's
  // callback on the ending thread waits for. await_end comes before such locks.
  void start(ScanPatternHandle pattern);
  // Waits for the acquisition thread. On the thread itself, where a client's callbacks run, it asks the
  // thread to end and throws std::system_error (resource_deadlock_would_occur).
  void stop();
  // Waits for a thread that has been asked to end or ends by itself; for no
  // other, and not on the thread itself.
  void await_end();

  // An empty callback removes the one before, which may be running when this returns.
  void set_ref_intensity_callback(RefIntensityCallback callback);
  void set_error_callback(const ErrorCallback& callback);

  // Hold from the next start on. Throw std::invalid_argument and change nothing on misuse.
  void set_size_z(std::int32_t size);  // depth samples per A-scan that are kept
  void set_refractive_index(double index);
  virtual void set_analog_input(bool enabled) { analog_input_ = enabled; }

  void set_camera(std::int32_t camera) { camera_ = camera; }

 protected:
  virtual void thread();  // the body of the acquisition thread

  // Sizes and ranges of the volumes of one measurement, and the part of them that is drawn.
  struct Geometry {
    VolumeExtent acquired;
    VolumeExtent kept;         // and drawn: less deep, maybe
    double depth_range = 0.0;  // millimetres: of the kept samples, divided by the refractive index
    double lateral_range1 = 0.0;
    double lateral_range2 = 0.0;
  };
  Geometry read_geometry(DataHandle data) const;

  // Requests initialisation of the live renderer and waits for the rendering thread. Otherwise, when the
  // source was stopped or there is no volume renderer, it returns so at once.
  enum class Preparation { done, stopped, no_renderer };
  Preparation prepare_rendering(const Geometry& geometry, DataHandle analog);

  void set_range(const Geometry& geometry) const;
  void copy_data(DataHandle data, const Geometry& geometry) const;

  // Passes the device's pending error to the client. Returns whether there was one.
  bool report_device_error() const;
  void report_error(const std::string& message) const;
  void report_reference_intensity() const;

  const StandardDeviceFunctions& sdk() const { return library_->standard; }
  const std::shared_ptr<const DeviceLibrary> library_;
  const OCTDeviceHandle device_;
  const ProcessingHandle processing_;
  ScanPatternHandle scan_pattern_ = nullptr;
  std::atomic<bool> running_ = false;  // whether the thread shall go on
  std::atomic<FastOpenGLVolumeRenderer*> live_renderer_ = nullptr;

 private:
  void run();
  bool idle() const { return !running_ && ended_; }
  // Lock of the thread object while there is no thread; throws otherwise.
  std::unique_lock<std::mutex> lock_idle();
  bool on_own_thread() const { return own_thread_ == std::this_thread::get_id(); }
  bool copy_volume(DataHandle data, const Geometry& geometry, float* destination) const;
  void copy_surface(DataHandle data, VolumeRenderer& renderer) const;

  const std::int32_t max_size_z_;  // half a spectrum
  std::atomic<std::int32_t> size_z_;
  std::atomic<double> device_value_;  // optical depth range in millimetres
  std::atomic<double> refractive_index_ = 1.0;
  std::atomic<bool> analog_input_ = false;
  std::atomic<std::int32_t> camera_ = 0;

  mutable std::mutex callback_mutex_;  // not held during a callback
  RefIntensityCallback ref_intensity_callback_;
  ErrorCallback error_callback_;

  std::mutex thread_mutex_;  // held by whoever starts or joins the thread, never by the thread
  // What the thread requests of the live renderer comes before a stop or not at all.
  std::mutex request_mutex_;
  std::thread thread_;
  std::uint64_t thread_number_ = 0;  // counts starts; written under both mutexes
  std::atomic<bool> ended_ = true;   // the thread is past its last callback
  std::atomic<std::thread::id> own_thread_;
};

}  // namespace oct
