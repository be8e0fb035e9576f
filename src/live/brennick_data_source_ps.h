// Acquires volumes from a device with two sensors and feeds one polarization quantity into a live renderer.
#pragma once

#include "live/brennick_data_source.h"

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

class BrennickDataSource_PS : public BrennickDataSource {
 public:
  BrennickDataSource_PS(std::shared_ptr<const DeviceLibrary> library, OCTDeviceHandle device,
                        ProcessingHandle processing0, ProcessingHandle processing1,
                        PolarizationProcessingHandle polarization);
  ~BrennickDataSource_PS() override;

  // Throws for true.
  void set_analog_input(bool enabled) override;

  // Hold from the next volume on.
  void set_output_mode(std::int32_t mode);
  void set_threshold(double threshold, bool enabled);
  void set_averaging(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans, std::int32_t volumes);
  void set_dopu(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans);
  PolarizationSettings settings() const;

 protected:
  void thread() override;

 private:
  // The device library's objects of one measurement.
  struct Volumes {
    RawDataHandle raw0 = nullptr;
    RawDataHandle raw1 = nullptr;
    ComplexDataHandle complex0 = nullptr;
    ComplexDataHandle complex1 = nullptr;
    DataHandle data = nullptr;  // what is drawn
  };
  Volumes create_volumes() const;
  void clear_volumes(const Volumes& volumes) const;

  void process(const Volumes& volumes, const PolarizationSettings& settings, bool first) const;
  void process_polarization(const Volumes& volumes, const PolarizationSettings& settings, bool first) const;
  void set_output(PolarizationOutput output, DataHandle data) const;
  void set_properties_first(const PolarizationSettings& settings) const;
  void set_properties(const PolarizationSettings& settings) const;
  void set_threshold_properties(const PolarizationSettings& settings) const;
  void set_dopu_properties(const PolarizationSettings& settings) const;

  const PolarizationDeviceFunctions& ps() const { return library_->polarization; }
  const ProcessingHandle processing1_;
  const PolarizationProcessingHandle ps_processing_;
  mutable std::mutex settings_mutex_;
  PolarizationSettings settings_;
};

}  // namespace oct
