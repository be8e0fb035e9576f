// Acquires volumes from a device with two sensors and feeds one polarization quantity into a live renderer.
#pragma once

#include "live/brennick_data_source.h"
#include "live/polarization_sequence.h"

namespace oct {

class BrennickDataSource_PS : public BrennickDataSource {
 public:
  BrennickDataSource_PS(const std::shared_ptr<const DeviceLibrary>& library,
                        const PolarizationDevice& device);

  // Throws for true.
  void set_analog_input(bool enabled) override;

  // Hold from the next volume on.
  void set_output_mode(std::int32_t mode);
  void set_threshold(double threshold, bool enabled);
  void set_averaging(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans, std::int32_t volumes);
  void set_dopu(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans);

 private:
  using SharedSettings = std::shared_ptr<SharedPolarizationSettings>;
  BrennickDataSource_PS(const std::shared_ptr<const DeviceLibrary>& library, const PolarizationDevice& device,
                        const SharedSettings& settings);

  const SharedSettings settings_;
};

}  // namespace oct
