// The calls for a device with two sensors for two polarizations.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>

#include "live/device_sequence.h"

namespace oct {

enum class PolarizationOutput : std::int32_t {
  intensity = 0,
  retardation = 1,
  optic_axis = 2,
  dopu = 3,
  stokes_q = 4,
  stokes_u = 5,
  stokes_v = 6,
  sensor0 = 7,  // plain intensity, without polarization processing
  sensor1 = 8
  // All others: volumes are acquired and nothing is made of them.
};

// What a client sets. Counts as the device library takes them.
struct PolarizationSettings {
  PolarizationOutput output_mode = PolarizationOutput::intensity;
  double threshold = 0.0;  // decibels
  bool threshold_enabled = false;
  std::int32_t averaging_depth = 1;
  std::int32_t averaging_a_scans = 1;
  std::int32_t averaging_b_scans = 1;
  std::int32_t averaging_volumes = 1;
  std::int32_t dopu_depth = 3;
  std::int32_t dopu_a_scans = 3;
  std::int32_t dopu_b_scans = 3;
};

// Settings that clients change while volumes are acquired.
class SharedPolarizationSettings {
 public:
  PolarizationSettings get() const {
    const std::lock_guard lock(mutex_);
    return settings_;
  }
  template <class Change>
  void change(Change change) {
    const std::lock_guard lock(mutex_);
    change(settings_);
  }

 private:
  mutable std::mutex mutex_;
  PolarizationSettings settings_;
};

// The client's objects of the device library.
struct PolarizationDevice {
  OCTDeviceHandle device;
  ProcessingHandle processing0;
  ProcessingHandle processing1;
  PolarizationProcessingHandle polarization;
};

class PolarizationSequence : public DeviceSequence {
 public:
  PolarizationSequence(const DeviceLibrary& library, const PolarizationDevice& device,
                       std::shared_ptr<const SharedPolarizationSettings> settings);
  ~PolarizationSequence() override;
  PolarizationSequence(const PolarizationSequence&) = delete;
  PolarizationSequence& operator=(const PolarizationSequence&) = delete;

  void fetch_first() override { fetch(); }
  void process_first() override;
  void fetch() override;
  void process() override;
  void set_range(double depth, double lateral1, double lateral2) override;
  DataHandle volume() const override { return data_; }
  bool has_volume(std::int64_t depth) const override { return depth > 0; }
  bool ends_by_itself() const override { return true; }
  const char* text_without_renderer() const override;

 private:
  void process(bool first);
  void process_polarization(bool first);
  void set_output(PolarizationOutput output);  // one of the polarization's
  void set_properties(bool first);
  void set_property(int property, int value);
  void set_threshold_properties();
  void set_dopu_properties();

  const StandardDeviceFunctions& sdk_;
  const PolarizationDeviceFunctions& ps_;
  const PolarizationDevice device_;
  const std::shared_ptr<const SharedPolarizationSettings> shared_settings_;
  PolarizationSettings settings_;  // of the volume that is being processed
  const RawDataHandle raw0_;
  const RawDataHandle raw1_;
  const ComplexDataHandle complex0_;
  const ComplexDataHandle complex1_;
  const DataHandle data_;
};

}  // namespace oct
