// Acquires volumes from one device and feeds them into a live renderer.
#pragma once

#include <array>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>

#include "core/error_callback.h"
#include "live/acquisition_thread.h"
#include "live/device_library.h"
#include "live/live_feed.h"
#include "live/measurement.h"

namespace oct {

using RefIntensityCallback = std::function<void(double intensity)>;
using VolumeCallback = std::function<void(const MeasuredSamples&)>;

// What sequences for one sensor are made with.
struct StandardSettings {
  const std::atomic<std::int32_t>& camera;
  bool analog_input;
};
using MakeSequence = std::function<std::unique_ptr<DeviceSequence>(const StandardSettings&)>;

class BrennickDataSource {
 public:
  // The handles are the device library's and outlive the source.
  BrennickDataSource(const std::shared_ptr<const DeviceLibrary>& library, OCTDeviceHandle device,
                     ProcessingHandle processing);
  virtual ~BrennickDataSource();
  BrennickDataSource(const BrennickDataSource&) = delete;
  BrennickDataSource& operator=(const BrennickDataSource&) = delete;

  // Throws while the thread lives, as AcquisitionThread::start does; await_end comes before the locks of its
  // caller.
  void start(std::shared_ptr<LiveFeed> feed, ScanPatternHandle pattern);
  // Waits for the acquisition thread. On the thread itself, where a client's callbacks run, it asks the
  // thread to end and throws std::system_error (resource_deadlock_would_occur).
  void stop();
  // The same, and ends the measurement without waiting for its volume.
  void cancel();
  void await_end() { thread_.await_end(); }
  bool is_acquiring() const { return acquiring_; }

  // An empty callback removes the one before, which may be running when this returns.
  void set_ref_intensity_callback(RefIntensityCallback callback);
  void set_error_callback(const ErrorCallback& callback);
  void set_volume_callback(VolumeCallback callback);
  // For clients that cannot be called back: the earliest error that nobody has read, and the reference intensity of
  // the latest volume since somebody asked for it, -1 before.
  std::optional<std::string> take_error();
  double ref_intensity();

  // Hold from the next start on. Throw std::invalid_argument and change nothing on misuse.
  void set_size_z(std::int32_t size);  // depth samples per A-scan that are kept
  void set_refractive_index(double index);
  virtual void set_analog_input(bool enabled) { analog_input_ = enabled; }

  void set_camera(std::int32_t camera) { camera_ = camera; }

 protected:
  // The sequence's maker must not refer to what ends with a derived object: the thread ends later.
  BrennickDataSource(const std::shared_ptr<const DeviceLibrary>& library, OCTDeviceHandle device,
                     ProcessingHandle processing, MakeSequence make_sequence);

 private:
  void run();
  void acquire();
  // Whether the live renderer has been initialised, or another source has it.
  bool prepare(Measurement& measurement);
  void wait_without_renderer(const DeviceSequence& sequence);
  AcquisitionThread::Run ask_to_end(bool cancel);

  // Passes the device's pending error to the client. Returns whether there was one.
  bool report_device_error();
  void report_error(const std::string& message);
  void keep_error(const std::string& message);
  void report_reference_intensity();
  void report_volume(Measurement& measurement, LiveTime processed);
  void fail(const std::string& message);

  const StandardDeviceFunctions& sdk() const { return library_->standard; }

  const std::shared_ptr<const DeviceLibrary> library_;
  const OCTDeviceHandle device_;
  const ProcessingHandle processing_;
  const MakeSequence make_sequence_;
  const std::int32_t max_size_z_;  // half a spectrum
  std::atomic<std::int32_t> size_z_;
  std::atomic<double> device_value_;  // optical depth range in millimetres
  std::atomic<double> refractive_index_ = 1.0;
  std::atomic<bool> analog_input_ = false;
  std::atomic<std::int32_t> camera_ = 0;

  mutable std::mutex callback_mutex_;  // not held during a callback
  RefIntensityCallback ref_intensity_callback_;
  ErrorCallback error_callback_;
  VolumeCallback volume_callback_;
  std::array<char, 512> unread_error_{};  // of fixed size: a shortage of memory is an error, too
  bool has_unread_error_ = false;

  std::atomic<bool> ref_intensity_wanted_ = false;
  std::atomic<double> ref_intensity_ = -1.0;
  MeasuringDevice measuring_;
  // What follows changes while there is no thread, or in AcquisitionThread's requests.
  ScanPatternHandle scan_pattern_ = nullptr;
  std::shared_ptr<LiveFeed> feed_;
  LiveClaim claim_ = no_claim;
  AcquisitionThread::Run run_ = 0;
  std::atomic<bool> cancelled_ = false;
  std::atomic<bool> acquiring_ = false;
  AcquisitionThread thread_;
};

}  // namespace oct
