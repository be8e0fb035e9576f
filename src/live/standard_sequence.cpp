#include "live/standard_sequence.h"

namespace oct {

StandardSequence::StandardSequence(const StandardDeviceFunctions& sdk, OCTDeviceHandle device,
                                   ProcessingHandle processing, const std::atomic<std::int32_t>& camera,
                                   bool analog)
    : sdk_(sdk),
      device_(device),
      processing_(processing),
      camera_(camera),
      raw_(sdk.createRawData()),
      data_(sdk.createData()),
      analog_(analog ? sdk.createData() : nullptr) {}

StandardSequence::~StandardSequence() {
  if (raw_) sdk_.clearRawData(raw_);
  if (data_) sdk_.clearData(data_);
  if (analog_) sdk_.clearData(analog_);
}

void StandardSequence::fetch_first() {
  fetch();
  if (analog_) sdk_.getAnalogInputData(device_, analog_);
}

void StandardSequence::process_first() {
  sdk_.executeProcessing(processing_, raw_);
}

void StandardSequence::fetch() {
  sdk_.setProcessedDataOutput(processing_, data_);
  sdk_.getRawDataEx(device_, raw_, camera_);
}

void StandardSequence::process() {
  sdk_.executeProcessing(processing_, raw_);
  if (analog_) sdk_.getAnalogInputData(device_, analog_);
}

void StandardSequence::set_range(double depth, double lateral1, double lateral2) {
  sdk_.setDataRange(data_, depth, lateral1, lateral2);
}

const char* StandardSequence::text_without_renderer() const {
  return "Renderer not available for fast volume rendering. Please specify a volume rendering object.";
}

}  // namespace oct
