// The device that a live view looks through, with everything made for it.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "client/handle_owner.h"
#include "data/samples.h"
#include "data/scan_settings.h"
#include "data/volume.h"
#include "scene/device_library.h"
#include "scene/polarization_mode.h"

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

  // Decibels, 9 above the noise. Reorders the samples.
  double polarization_threshold();
  // The range of the surface's depths where the whole A-scan is this deep; none without a surface.
  std::optional<ValueRange> surface_range(double whole_depth);
};

class LiveDevice {
 public:
  explicit LiveDevice(const DeviceSetup& setup);

  OCTDeviceHandle device() const { return device_.get(); }
  ProcessingHandle processing(int sensor) const {
    return processings_[static_cast<std::size_t>(sensor)].get();
  }
  PolarizationProcessingHandle polarization() const { return polarization_.get(); }
  ScanPatternHandle pattern() const { return pattern_.get(); }
  double depth_range() const { return library_.getDevicePropertyFloat(device(), OCT_DEVICE_DEPTH_RANGE); }

  // The intensity of one volume: of the selected sensor, or of both.
  MeasuredVolume measure(bool with_surface);

 private:
  OCTDeviceHandle make_device(const DeviceSetup& setup) const;
  HandleOwner<ProcessingHandle> make_processing() const;
  void process(RawDataHandle raw0, RawDataHandle raw1, DataHandle data) const;
  std::vector<float> samples_of(DataHandle data) const;
  std::vector<float> surface_of(DataHandle data) const;

  const DeviceLibrary library_;
  const std::optional<PolarizationMode> mode_;
  // The one that is made first is cleared last.
  HandleOwner<OCTDeviceHandle> device_;
  std::array<HandleOwner<ProcessingHandle>, 2> processings_;  // one per sensor
  HandleOwner<PolarizationProcessingHandle> polarization_;    // none with one sensor
  HandleOwner<ScanPatternHandle> pattern_;
};

}  // namespace oct::app
