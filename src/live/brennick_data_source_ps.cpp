#include "live/brennick_data_source_ps.h"

#include <algorithm>

#include "core/exception.h"
#include "core/timing_mark.h"
#include "live/scope_exit.h"

namespace oct {
namespace {

bool is_polarization(PolarizationOutput output) {
  return output >= PolarizationOutput::intensity && output <= PolarizationOutput::stokes_v;
}

bool is_drawn(PolarizationOutput output) {
  return output >= PolarizationOutput::intensity && output <= PolarizationOutput::sensor1;
}

}  // namespace

BrennickDataSource_PS::BrennickDataSource_PS(std::shared_ptr<const DeviceLibrary> library,
                                             OCTDeviceHandle device, ProcessingHandle processing0,
                                             ProcessingHandle processing1,
                                             PolarizationProcessingHandle polarization)
    : BrennickDataSource(std::move(library), device, processing0),
      processing1_(processing1),
      ps_processing_(polarization) {}

// Here, because the thread uses what ends with this object.
BrennickDataSource_PS::~BrennickDataSource_PS() {
  BrennickDataSource::stop();
}

void BrennickDataSource_PS::set_analog_input(bool enabled) {
  if (enabled) throw Exception("Analog input not supported in PS Live mode.");
}

void BrennickDataSource_PS::set_output_mode(std::int32_t mode) {
  const std::lock_guard lock(settings_mutex_);
  settings_.output_mode = static_cast<PolarizationOutput>(mode);
}

void BrennickDataSource_PS::set_threshold(double threshold, bool enabled) {
  const std::lock_guard lock(settings_mutex_);
  settings_.threshold = threshold;
  settings_.threshold_enabled = enabled;
}

void BrennickDataSource_PS::set_averaging(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans,
                                          std::int32_t volumes) {
  const std::lock_guard lock(settings_mutex_);
  settings_.averaging_depth = std::max(depth, 1);
  settings_.averaging_a_scans = std::max(a_scans, 1);
  settings_.averaging_b_scans = std::max(b_scans, 1);
  settings_.averaging_volumes = std::max(volumes, 1);
}

void BrennickDataSource_PS::set_dopu(std::int32_t depth, std::int32_t a_scans, std::int32_t b_scans) {
  // Clients rely on the size before, not the new one, deciding: one that was too small is put right by the
  // next call, whatever that asks for.
  const auto next = [](std::int32_t before, std::int32_t size) { return before >= 3 ? size : 3; };
  const std::lock_guard lock(settings_mutex_);
  settings_.dopu_depth = next(settings_.dopu_depth, depth);
  settings_.dopu_a_scans = next(settings_.dopu_a_scans, a_scans);
  settings_.dopu_b_scans = next(settings_.dopu_b_scans, b_scans);
}

PolarizationSettings BrennickDataSource_PS::settings() const {
  const std::lock_guard lock(settings_mutex_);
  return settings_;
}

BrennickDataSource_PS::Volumes BrennickDataSource_PS::create_volumes() const {
  Volumes volumes;
  volumes.raw0 = sdk().createRawData();
  volumes.raw1 = sdk().createRawData();
  volumes.complex0 = ps().createComplexData();
  volumes.complex1 = ps().createComplexData();
  volumes.data = sdk().createData();
  return volumes;
}

void BrennickDataSource_PS::clear_volumes(const Volumes& volumes) const {
  if (volumes.data) sdk().clearData(volumes.data);
  if (volumes.complex0) ps().clearComplexData(volumes.complex0);
  if (volumes.complex1) ps().clearComplexData(volumes.complex1);
  if (volumes.raw0) sdk().clearRawData(volumes.raw0);
  if (volumes.raw1) sdk().clearRawData(volumes.raw1);
}

void BrennickDataSource_PS::thread() {
  const TimingMark mark("BrennickDataSource_PS::thread");
  const Volumes volumes = create_volumes();
  const ScopeExit clean_up([&] {
    sdk().stopMeasurement(device_);
    clear_volumes(volumes);
  });

  sdk().startMeasurement(device_, scan_pattern_, 0);
  if (sdk().isError() == 0) {
    sdk().getRawDataEx(device_, volumes.raw0, 0);
    sdk().getRawDataEx(device_, volumes.raw1, 1);
  }
  if (report_device_error()) running_ = false;
  const PolarizationSettings first = settings();
  if (running_) process(volumes, first, true);

  const Geometry geometry = volumes.data ? read_geometry(volumes.data) : Geometry();
  if (running_) {
    switch (prepare_rendering(geometry, nullptr)) {
      case Preparation::no_renderer:
        // Nothing could be drawn before the client sets a renderer and starts again.
        running_ = false;
        report_error("Volume renderer is null in BrennickDataSourcePS");
        break;
      case Preparation::stopped:
        break;
      case Preparation::done:
        // A mode that processes nothing has left nothing to draw.
        if (geometry.acquired.depth > 0) copy_data(volumes.data, geometry);
    }
  }
  while (running_) {
    const PolarizationSettings current = settings();
    sdk().getRawDataEx(device_, volumes.raw0, 0);
    sdk().getRawDataEx(device_, volumes.raw1, 1);
    process(volumes, current, false);
    if (is_drawn(current.output_mode)) {
      sdk().setDataRange(volumes.data, geometry.depth_range, geometry.lateral_range1,
                         geometry.lateral_range2);
    }
    set_range(geometry);
    if (report_device_error()) running_ = false;
    report_reference_intensity();
    if (running_ && geometry.acquired.depth > 0) copy_data(volumes.data, geometry);
  }
}

void BrennickDataSource_PS::process(const Volumes& volumes, const PolarizationSettings& settings,
                                    bool first) const {
  const bool sensor0 = settings.output_mode == PolarizationOutput::sensor0;
  if (is_polarization(settings.output_mode)) {
    process_polarization(volumes, settings, first);
  } else if (is_drawn(settings.output_mode)) {
    sdk().setProcessedDataOutput(sensor0 ? processing_ : processing1_, volumes.data);
    sdk().executeProcessing(sensor0 ? processing_ : processing1_, sensor0 ? volumes.raw0 : volumes.raw1);
  }
}

void BrennickDataSource_PS::process_polarization(const Volumes& volumes, const PolarizationSettings& settings,
                                                 bool first) const {
  ps().setComplexDataOutput(processing_, volumes.complex0);
  ps().setComplexDataOutput(processing1_, volumes.complex1);
  sdk().executeProcessing(processing_, volumes.raw0);
  sdk().executeProcessing(processing1_, volumes.raw1);
  set_output(settings.output_mode, volumes.data);
  if (first) {
    set_properties_first(settings);
  } else {
    set_properties(settings);
  }
  ps().executePolarizationProcessing(ps_processing_, volumes.complex0, volumes.complex1);
}

void BrennickDataSource_PS::set_output(PolarizationOutput output, DataHandle data) const {
  switch (output) {
    case PolarizationOutput::intensity:
      return ps().setPolarizationOutputI(ps_processing_, data);
    case PolarizationOutput::retardation:
      return ps().setPolarizationOutputRetardation(ps_processing_, data);
    case PolarizationOutput::optic_axis:
      return ps().setPolarizationOutputOpticAxis(ps_processing_, data);
    case PolarizationOutput::dopu:
      return ps().setPolarizationOutputDOPU(ps_processing_, data);
    case PolarizationOutput::stokes_q:
      return ps().setPolarizationOutputQ(ps_processing_, data);
    case PolarizationOutput::stokes_u:
      return ps().setPolarizationOutputU(ps_processing_, data);
    case PolarizationOutput::stokes_v:
      return ps().setPolarizationOutputV(ps_processing_, data);
    case PolarizationOutput::sensor0:
    case PolarizationOutput::sensor1:
      return;
  }
}

void BrennickDataSource_PS::set_threshold_properties(const PolarizationSettings& settings) const {
  ps().setPolarizationFlag(ps_processing_, OCT_POLARIZATION_USE_THRESHOLD,
                           settings.threshold_enabled ? 1 : 0);
  ps().setPolarizationPropertyFloat(ps_processing_, OCT_POLARIZATION_THRESHOLD, settings.threshold);
}

void BrennickDataSource_PS::set_dopu_properties(const PolarizationSettings& settings) const {
  if (settings.output_mode != PolarizationOutput::dopu) return;
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_DOPU_1, settings.dopu_depth);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_DOPU_2, settings.dopu_a_scans);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_DOPU_3, settings.dopu_b_scans);
}

// Before the first volume the threshold of the intensity stays the device's own, and the averaging over
// volumes is set before the sizes of the DOPU filter: devices are used to this sequence.
void BrennickDataSource_PS::set_properties_first(const PolarizationSettings& settings) const {
  if (settings.output_mode != PolarizationOutput::intensity) set_threshold_properties(settings);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_2, settings.averaging_a_scans);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_3, settings.averaging_b_scans);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_1, settings.averaging_depth);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_VOLUMES,
                                  settings.averaging_volumes);
  set_dopu_properties(settings);
}

void BrennickDataSource_PS::set_properties(const PolarizationSettings& settings) const {
  set_threshold_properties(settings);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_2, settings.averaging_a_scans);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_3, settings.averaging_b_scans);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_1, settings.averaging_depth);
  set_dopu_properties(settings);
  ps().setPolarizationPropertyInt(ps_processing_, OCT_POLARIZATION_AVERAGING_VOLUMES,
                                  settings.averaging_volumes);
}

}  // namespace oct
