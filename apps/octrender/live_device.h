// The device that a live view looks through, with everything made for it.
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "device_library.h"
#include "polarization_mode.h"
#include "scan_options.h"
#include "volume_data.h"

namespace oct::app {

struct DeviceSetup {
  std::string library = "oct_device";
  int phantom = OCT_PHANTOM_FINGER_PAD;
  std::optional<VolumeData> playback;  // in place of the phantom
  double noise = 0.0;                  // of the playback, in decibels
  ScanSettings scan;
  double depth = 3.6;  // of the playback; millimetres
  int motion = OCT_MOTION_NONE;
  std::optional<double> rate;  // A-scans per second in real time; none: as fast as they come
  std::optional<PolarizationMode> polarization;  // none: a device with one sensor
};

// One volume that was measured to get to know it.
struct MeasuredVolume {
  std::vector<float> samples;  // decibels
  std::vector<float> surface;  // depths as parts of the whole A-scan; without those of A-scans that have none
  int depth = 0;
};

class LiveDevice {
 public:
  explicit LiveDevice(const DeviceSetup& setup);
  ~LiveDevice();
  LiveDevice(const LiveDevice&) = delete;
  LiveDevice& operator=(const LiveDevice&) = delete;

  OCTDeviceHandle device() const { return device_; }
  ProcessingHandle processing(int sensor) const { return processings_[sensor]; }
  PolarizationProcessingHandle polarization() const { return polarization_; }
  ScanPatternHandle pattern() const { return pattern_; }
  double depthRange() const { return library_.getDevicePropertyFloat(device_, OCT_DEVICE_DEPTH_RANGE); }

  // The intensity of one volume: of the selected sensor, or of both.
  MeasuredVolume measure(bool withSurface);

 private:
  void make(const DeviceSetup& setup);
  void release();
  void process(RawDataHandle raw0, RawDataHandle raw1, DataHandle data) const;
  void read(DataHandle data, bool withSurface, MeasuredVolume& volume) const;

  const DeviceLibrary library_;
  const std::optional<PolarizationMode> mode_;
  OCTDeviceHandle device_ = nullptr;
  ProcessingHandle processings_[2] = {};
  PolarizationProcessingHandle polarization_ = nullptr;
  ScanPatternHandle pattern_ = nullptr;
};

}  // namespace oct::app
