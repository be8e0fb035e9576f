#include "live/pattern_device.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace oct::test {

PatternDevice& pattern_state() {
  static PatternDevice state;
  return state;
}

void resize(OctData& data, int size1, int size2, int size3) {
  data.size[0] = size1, data.size[1] = size2, data.size[2] = size3;
  data.samples.resize(static_cast<std::size_t>(size1) * static_cast<std::size_t>(size2) *
                      static_cast<std::size_t>(size3));
}

void copy_or_clear(const std::vector<float>& source, std::vector<float>& target) {
  if (source.empty()) std::fill(target.begin(), target.end(), 0.0F);
  std::copy_n(source.begin(), std::min(source.size(), target.size()), target.begin());
}

void PatternDevice::fill(OctData& data, int number, int shown_quantity) {
  const std::lock_guard lock(mutex);
  resize(data, size[0], size[1], size[2]);
  data.range[0] = 2.0, data.range[1] = 3.0, data.range[2] = 1.5;
  if (volume.size() == data.samples.size()) {
    data.samples = volume;
  } else {
    const float value = static_cast<float>(shown_quantity) + static_cast<float>(number % 200 + 1) / 256.0F;
    std::fill(data.samples.begin(), data.samples.end(), value);
  }
}

}  // namespace oct::test

using oct::test::entered;
using oct::test::locked;
using oct::test::pattern_state;
using oct::test::PatternDevice;

oct::test::PatternDevice* patternDevice() {
  return &pattern_state();
}

int getDevicePropertyInt(OCTDeviceHandle device, int property) {
  if (!entered("getDevicePropertyInt", device, property)) return 0;
  return 2 * pattern_state().size[0];
}

double getDevicePropertyFloat(OCTDeviceHandle device, int property) {
  return entered("getDevicePropertyFloat", device, property) ? 2.0 : 0.0;
}

RawDataHandle createRawData(void) {
  return entered("createRawData") ? pattern_state().make<OctRawData>("raw") : nullptr;
}

void clearRawData(RawDataHandle raw) {
  if (entered("clearRawData", raw)) pattern_state().clear(raw);
}

DataHandle createData(void) {
  return entered("createData") ? pattern_state().make<OctData>("data") : nullptr;
}

void clearData(DataHandle data) {
  if (entered("clearData", data)) pattern_state().clear(data);
}

void startMeasurement(OCTDeviceHandle device, ScanPatternHandle pattern, int mode) {
  if (!entered("startMeasurement", device, pattern, mode)) return;
  const bool first = locked([=](PatternDevice& state) {
    state.lost = 0;
    return state.measuring.insert(device).second;
  });
  if (!first) pattern_state().raise("startMeasurement while measuring");
}

void stopMeasurement(OCTDeviceHandle device) {
  if (!entered("stopMeasurement", device)) return;
  // A volume that is being fetched is given up.
  locked([=](PatternDevice& state) { state.measuring.erase(device); });
  if (locked([](PatternDevice& state) { return state.held_function == "getRawDataEx"; }))
    pattern_state().release();
}

int isError(void) {
  entered("isError");
  return locked([](PatternDevice& state) { return state.error.empty() ? 0 : 1; });
}

int getError(char* buffer, int size) {
  entered("getError", size);
  const std::string error = locked([](PatternDevice& state) { return std::exchange(state.error, {}); });
  std::snprintf(buffer, static_cast<std::size_t>(size), "%s", error.c_str());
  return error.empty() ? 0 : 1;
}

// Both sensors give the same volume, sensor 0 first.
void getRawDataEx(OCTDeviceHandle device, RawDataHandle raw, int camera) {
  if (!entered("getRawDataEx", device, raw, camera)) return;
  const bool measures = locked([=](PatternDevice& state) { return state.measuring.contains(device); });
  if (!measures) return pattern_state().raise("No measurement is running");
  locked([=](PatternDevice& state) {
    raw->camera = camera;
    raw->volume = camera == 0 ? state.acquired++ : state.acquired - 1;
  });
}

void getAnalogInputData(OCTDeviceHandle device, DataHandle data) {
  if (!entered("getAnalogInputData", device, data)) return;
  locked([=](PatternDevice& state) {
    oct::test::resize(*data, state.channels, state.size[1], state.size[2] - state.analog_lacks);
    oct::test::copy_or_clear(state.analog, data->samples);
  });
}

void setProcessedDataOutput(ProcessingHandle processing, DataHandle data) {
  if (!entered("setProcessedDataOutput", processing, data)) return;
  locked([=](PatternDevice& state) { state.data_outputs[processing] = data; });
}

void executeProcessing(ProcessingHandle processing, RawDataHandle raw) {
  if (!entered("executeProcessing", processing, raw)) return;
  DataHandle const data = locked([=](PatternDevice& state) {
    const auto complex = state.complex_outputs.find(processing);
    if (complex != state.complex_outputs.end() && complex->second) complex->second->volume = raw->volume;
    const auto output = state.data_outputs.find(processing);
    return output != state.data_outputs.end() ? output->second : nullptr;
  });
  using oct::test::PatternDevice;
  const int sensor = raw->camera == 0 ? PatternDevice::sensor0 : PatternDevice::sensor1;
  if (data) pattern_state().fill(*data, raw->volume, sensor);
}

int getDataPropertyInt(DataHandle data, int property) {
  if (!entered("getDataPropertyInt", data, property)) return 0;
  if (property == OCT_DATA_BYTE_COUNT) return static_cast<int>(data->samples.size() * sizeof(float));
  return data->size[property - OCT_DATA_SIZE_1];
}

double getDataPropertyFloat(DataHandle data, int property) {
  return entered("getDataPropertyFloat", data, property) ? data->range[property - OCT_DATA_RANGE_1] : 0.0;
}

void setDataRange(DataHandle data, double range1, double range2, double range3) {
  if (!entered("setDataRange", data, range1, range2, range3)) return;
  data->range[0] = range1, data->range[1] = range2, data->range[2] = range3;
}

float* getDataPtr(DataHandle data) {
  return entered("getDataPtr", data) && !data->samples.empty() ? data->samples.data() : nullptr;
}

double getRelativeReferenceIntensity(OCTDeviceHandle device, ProcessingHandle processing) {
  return entered("getRelativeReferenceIntensity", device, processing) ? 0.625 : 0.0;
}
