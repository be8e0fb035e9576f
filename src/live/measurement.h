// What lasts for one measurement: the device that measures, the objects it fills, and what of them is drawn.
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <vector>

#include "core/extent.h"
#include "live/acquisition_thread.h"
#include "live/device_sequence.h"
#include "live/live_feed.h"

namespace oct {

// Measures from start to stop, which happens once per run: by the thread that measures, or by whoever does
// not wait for its volume.
class MeasuringDevice {
 public:
  MeasuringDevice(const StandardDeviceFunctions& sdk, OCTDeviceHandle device) : sdk_(sdk), device_(device) {}

  void start(AcquisitionThread::Run run, ScanPatternHandle pattern);
  void stop(AcquisitionThread::Run run);
  // That nobody fetched in time, since the start; 0 where the library does not tell.
  int lost_volumes() const { return sdk_.getLostVolumes ? sdk_.getLostVolumes(device_) : 0; }

 private:
  const StandardDeviceFunctions& sdk_;
  const OCTDeviceHandle device_;
  std::mutex mutex_;
  AcquisitionThread::Run measuring_ = 0;  // 0: none
};

// What a client has set for the next measurement.
struct Cut {
  std::int32_t kept_depth = 0;  // samples per A-scan
  double refractive_index = 1.0;
};

// A volume's kept samples, depth fastest, then A-scans, then B-scans. They are the measurement's, until the next volume.
struct MeasuredSamples {
  const float* first = nullptr;
  VolumeExtent extent;
  std::uint64_t index = 0;  // counts the volumes of a measurement
  LiveTime processed;
};

// Acquisition thread only. Ends its measurement and frees the device library's objects.
class Measurement {
 public:
  Measurement(const StandardDeviceFunctions& sdk, MeasuringDevice& device, AcquisitionThread::Run run,
              std::unique_ptr<DeviceSequence> sequence);
  ~Measurement();
  Measurement(const Measurement&) = delete;
  Measurement& operator=(const Measurement&) = delete;

  DeviceSequence& sequence() const { return *sequence_; }

  // Sizes and ranges of the volumes, from the first one, and the part of them that is drawn.
  void read_geometry(const Cut& cut);
  void read_analog();  // once per measurement
  LiveFormat format() const { return {kept_, secondary_width_}; }

  // Onto the data; onto the volume renderer.
  void set_data_range() const;
  void show_range(LiveFeed& feed, LiveClaim claim) const;

  // Copies volume and surface to where they are wanted. False when the device gave no samples. Throws an
  // Exception when it gave fewer than are drawn.
  bool hand_over(LiveFeed& feed, LiveClaim claim, LiveTime processed);
  // Of the volume that was handed over last, or would have been; none without samples. Throws as hand_over does.
  std::optional<MeasuredSamples> samples(LiveTime processed);

 private:
  bool hand_over_volume(LiveFeed& feed, LiveClaim claim, LiveTime processed);
  void hand_over_surface(LiveFeed& feed, LiveClaim claim);
  void crop_depths(float scale);
  const float* volume_samples() const;
  const float* cropped(const float* source);
  void collect_secondary();

  const StandardDeviceFunctions& sdk_;
  MeasuringDevice& device_;
  const AcquisitionThread::Run run_;
  const std::unique_ptr<DeviceSequence> sequence_;
  VolumeExtent acquired_;
  VolumeExtent kept_;         // and drawn: less deep, maybe
  double depth_range_ = 0.0;  // millimetres: of the kept samples, divided by the refractive index
  double lateral_range1_ = 0.0;
  double lateral_range2_ = 0.0;
  const float* analog_samples_ = nullptr;
  std::int32_t secondary_width_ = 0;
  LiveDelivery delivery_;      // of the next volume
  int lost_volumes_ = 0;       // that have been counted
  std::vector<float> depths_;  // of the surface
  std::uint64_t volumes_ = 0;
  std::vector<float> cropped_;  // what is kept of a volume, where it is not the whole
};

}  // namespace oct
