#include "live/polarization_sequence.h"

#include <array>
#include <utility>

namespace oct {
namespace {

bool is_polarization(PolarizationOutput output) {
  return output >= PolarizationOutput::intensity && output <= PolarizationOutput::stokes_v;
}

bool is_drawn(PolarizationOutput output) {
  return output >= PolarizationOutput::intensity && output <= PolarizationOutput::sensor1;
}

}  // namespace

PolarizationSequence::PolarizationSequence(const DeviceLibrary& library, const PolarizationDevice& device,
                                           std::shared_ptr<const SharedPolarizationSettings> settings)
    : sdk_(library.standard),
      ps_(library.polarization),
      device_(device),
      shared_settings_(std::move(settings)),
      raw0_(sdk_.createRawData()),
      raw1_(sdk_.createRawData()),
      complex0_(ps_.createComplexData()),
      complex1_(ps_.createComplexData()),
      data_(sdk_.createData()) {}

PolarizationSequence::~PolarizationSequence() {
  if (data_) sdk_.clearData(data_);
  if (complex0_) ps_.clearComplexData(complex0_);
  if (complex1_) ps_.clearComplexData(complex1_);
  if (raw0_) sdk_.clearRawData(raw0_);
  if (raw1_) sdk_.clearRawData(raw1_);
}

void PolarizationSequence::fetch() {
  sdk_.getRawDataEx(device_.device, raw0_, 0);
  sdk_.getRawDataEx(device_.device, raw1_, 1);
}

void PolarizationSequence::process_first() {
  process(true);
}

void PolarizationSequence::process() {
  process(false);
}

// What clients have set by the time the volume has come holds for it.
void PolarizationSequence::process(bool first) {
  settings_ = shared_settings_->get();
  if (is_polarization(settings_.output_mode)) {
    process_polarization(first);
  } else if (is_drawn(settings_.output_mode)) {
    const bool sensor0 = settings_.output_mode == PolarizationOutput::sensor0;
    const ProcessingHandle processing = sensor0 ? device_.processing0 : device_.processing1;
    sdk_.setProcessedDataOutput(processing, data_);
    sdk_.executeProcessing(processing, sensor0 ? raw0_ : raw1_);
  }
}

void PolarizationSequence::process_polarization(bool first) {
  ps_.setComplexDataOutput(device_.processing0, complex0_);
  ps_.setComplexDataOutput(device_.processing1, complex1_);
  sdk_.executeProcessing(device_.processing0, raw0_);
  sdk_.executeProcessing(device_.processing1, raw1_);
  set_output(settings_.output_mode);
  set_properties(first);
  ps_.executePolarizationProcessing(device_.polarization, complex0_, complex1_);
}

void PolarizationSequence::set_range(double depth, double lateral1, double lateral2) {
  if (is_drawn(settings_.output_mode)) sdk_.setDataRange(data_, depth, lateral1, lateral2);
}

const char* PolarizationSequence::text_without_renderer() const {
  return "Volume renderer is null in BrennickDataSourcePS";
}

void PolarizationSequence::set_output(PolarizationOutput output) {
  // By the number of the output.
  const std::array setters{ps_.setPolarizationOutputI,         ps_.setPolarizationOutputRetardation,
                           ps_.setPolarizationOutputOpticAxis, ps_.setPolarizationOutputDOPU,
                           ps_.setPolarizationOutputQ,         ps_.setPolarizationOutputU,
                           ps_.setPolarizationOutputV};
  setters[static_cast<std::size_t>(output)](device_.polarization, data_);
}

void PolarizationSequence::set_property(int property, int value) {
  ps_.setPolarizationPropertyInt(device_.polarization, property, value);
}

void PolarizationSequence::set_threshold_properties() {
  ps_.setPolarizationFlag(device_.polarization, OCT_POLARIZATION_USE_THRESHOLD,
                          settings_.threshold_enabled ? 1 : 0);
  ps_.setPolarizationPropertyFloat(device_.polarization, OCT_POLARIZATION_THRESHOLD, settings_.threshold);
}

void PolarizationSequence::set_dopu_properties() {
  if (settings_.output_mode != PolarizationOutput::dopu) return;
  set_property(OCT_POLARIZATION_DOPU_1, settings_.dopu_depth);
  set_property(OCT_POLARIZATION_DOPU_2, settings_.dopu_a_scans);
  set_property(OCT_POLARIZATION_DOPU_3, settings_.dopu_b_scans);
}

// Before the first volume the threshold of the intensity stays the device's own, and the averaging over
// volumes is set before the sizes of the DOPU filter: devices are used to this sequence.
void PolarizationSequence::set_properties(bool first) {
  if (!first || settings_.output_mode != PolarizationOutput::intensity) set_threshold_properties();
  set_property(OCT_POLARIZATION_AVERAGING_2, settings_.averaging_a_scans);
  set_property(OCT_POLARIZATION_AVERAGING_3, settings_.averaging_b_scans);
  set_property(OCT_POLARIZATION_AVERAGING_1, settings_.averaging_depth);
  if (!first) set_dopu_properties();
  set_property(OCT_POLARIZATION_AVERAGING_VOLUMES, settings_.averaging_volumes);
  if (first) set_dopu_properties();
}

}  // namespace oct
