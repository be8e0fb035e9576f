#include "live/brennick_data_source_ps.h"

#include <algorithm>
#include <stdexcept>

namespace oct {

BrennickDataSource_PS::BrennickDataSource_PS(const std::shared_ptr<const DeviceLibrary>& library,
                                             const PolarizationDevice& device)
    : BrennickDataSource_PS(library, device, std::make_shared<SharedPolarizationSettings>()) {}

BrennickDataSource_PS::BrennickDataSource_PS(const std::shared_ptr<const DeviceLibrary>& library,
                                             const PolarizationDevice& device, const SharedSettings& settings)
    : BrennickDataSource(library, device.device, device.processing0,
                         [library, device, settings](const StandardSettings&) {
                           return std::make_unique<PolarizationSequence>(*library, device, settings);
                         }),
      settings_(settings) {}

void BrennickDataSource_PS::set_analog_input(bool enabled) {
  if (enabled) throw std::invalid_argument("Analog input not supported in PS Live mode.");
}

void BrennickDataSource_PS::set_output_mode(std::int32_t mode) {
  settings_->change(
      [=](PolarizationSettings& all) { all.output_mode = static_cast<PolarizationOutput>(mode); });
}

void BrennickDataSource_PS::set_threshold(double threshold, bool enabled) {
  settings_->change([=](PolarizationSettings& all) {
    all.threshold = threshold;
    all.threshold_enabled = enabled;
  });
}

void BrennickDataSource_PS::set_averaging(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans,
                                          std::int32_t volumes) {
  settings_->change([=](PolarizationSettings& all) {
    all.averaging_depth = std::max(depth, 1);
    all.averaging_a_scans = std::max(a_scans, 1);
    all.averaging_b_scans = std::max(b_scans, 1);
    all.averaging_volumes = std::max(volumes, 1);
  });
}

void BrennickDataSource_PS::set_dopu(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans) {
  // Clients rely on the size before, not the new one, deciding: one that was too small is put right by the
  // next call, whatever that asks for.
  const auto next = [](std::int32_t before, std::int32_t size) { return before >= 3 ? size : 3; };
  settings_->change([=](PolarizationSettings& all) {
    all.dopu_depth = next(all.dopu_depth, depth);
    all.dopu_a_scans = next(all.dopu_a_scans, a_scans);
    all.dopu_b_scans = next(all.dopu_b_scans, b_scans);
  });
}

}  // namespace oct
