// The calls for a device with one sensor.
#pragma once

#include <atomic>

#include "live/device_sequence.h"

namespace oct {

class StandardSequence : public DeviceSequence {
 public:
  // The camera is the source's, which lives longer, and is read for every volume.
  StandardSequence(const StandardDeviceFunctions& sdk, OCTDeviceHandle device, ProcessingHandle processing,
                   const std::atomic<std::int32_t>& camera, bool analog);
  ~StandardSequence() override;
  StandardSequence(const StandardSequence&) = delete;
  StandardSequence& operator=(const StandardSequence&) = delete;

  void fetch_first() override;
  void process_first() override;
  void fetch() override;
  void process() override;
  void set_range(double depth, double lateral1, double lateral2) override;
  DataHandle volume() const override { return data_; }
  DataHandle analog() const override { return analog_; }
  bool has_volume(std::int64_t) const override { return true; }
  bool ends_by_itself() const override { return false; }
  const char* text_without_renderer() const override;

 private:
  const StandardDeviceFunctions& sdk_;
  const OCTDeviceHandle device_;
  const ProcessingHandle processing_;
  const std::atomic<std::int32_t>& camera_;
  const RawDataHandle raw_;
  const DataHandle data_;
  const DataHandle analog_;  // null: not wanted
};

}  // namespace oct
