#include "live/pattern_device.h"

#include <algorithm>
#include <cstdio>

#include "live/pattern_state.h"

namespace oct::test {

PatternState& patternState() {
  static PatternState state;
  return state;
}

namespace {

// Objects that tests pass through without owning them.
struct Fixed {
  int device[PatternDevice::devices] = {};
  int processing[PatternDevice::devices] = {};
  int polarization = 0;
  int scanPattern = 0;
};
Fixed fixed;

PatternState& state() {
  return patternState();
}

class Control : public PatternDevice {
 public:
  Control() { Control::reset(); }

  void reset() override {
    release();
    const std::lock_guard lock(state().mutex);
    PatternState& s = state();
    s.names = {{&fixed.polarization, "polarization"}, {&fixed.scanPattern, "scan"}};
    for (int i = 0; i < devices; ++i) {
      s.names[&fixed.device[i]] = "device" + (i > 0 ? std::to_string(i) : "");
      s.names[&fixed.processing[i]] = "processing" + std::to_string(i);
    }
    s.made.clear();
    s.objects.clear();
    s.misuses = s.acquired = 0;
    s.size[0] = 16, s.size[1] = 12, s.size[2] = 10;
    s.volume.clear();
    s.analog.clear();
    s.surface.clear();
    s.channels = 2;
    s.failures.clear();
    s.recording = false;
    s.measuring.clear();
    s.calls.clear();
    s.error.clear();
    s.dataOutputs.clear();
    s.complexOutputs.clear();
    s.polarizationOutput = nullptr;
  }

  OCTDeviceHandle device(int number) override {
    return reinterpret_cast<OCTDeviceHandle>(&fixed.device[number]);
  }
  ProcessingHandle processing(int number) override {
    return reinterpret_cast<ProcessingHandle>(&fixed.processing[number]);
  }
  PolarizationProcessingHandle polarization() override {
    return reinterpret_cast<PolarizationProcessingHandle>(&fixed.polarization);
  }
  ScanPatternHandle scanPattern() override { return reinterpret_cast<ScanPatternHandle>(&fixed.scanPattern); }

  void setSize(int size1, int size2, int size3) override {
    const std::lock_guard lock(state().mutex);
    state().size[0] = size1, state().size[1] = size2, state().size[2] = size3;
  }
  void setVolume(const float* samples) override {
    const std::lock_guard lock(state().mutex);
    state().volume.assign(samples, samples + (samples ? voxels() : 0));
  }
  void setAnalog(int channels, const float* samples) override {
    const std::lock_guard lock(state().mutex);
    state().channels = channels;
    state().analog.assign(samples, samples + channels * aScans());
  }
  void setSurface(const float* depths) override {
    const std::lock_guard lock(state().mutex);
    state().surface.assign(depths, depths + aScans());
  }

  void fail(const char* function, int call) override {
    const std::lock_guard lock(state().mutex);
    state().failures[function] = {call, 0};
  }
  void hold(const char* function, int after) override { state().hold(function, after); }
  bool held() override {
    const std::lock_guard lock(state().mutex);
    return state().waiting > 0;
  }
  void release() override { state().hold({}, 0); }

  void record(bool enabled) override {
    const std::lock_guard lock(state().mutex);
    if (enabled) state().calls.clear();
    state().recording = enabled;
  }
  std::string calls() override { return read(state().calls); }
  int volumes() override { return read(state().acquired); }
  int objects() override {
    const std::lock_guard lock(state().mutex);
    return static_cast<int>(state().objects.size());
  }
  int misuses() override { return read(state().misuses); }

 private:
  static std::ptrdiff_t aScans() { return std::ptrdiff_t{state().size[1]} * state().size[2]; }
  static std::ptrdiff_t voxels() { return aScans() * state().size[0]; }
  template <class T>
  static T read(const T& value) {
    const std::lock_guard lock(state().mutex);
    return value;
  }
};

void resize(OctData& data, int size1, int size2, int size3) {
  data.size[0] = size1, data.size[1] = size2, data.size[2] = size3;
  data.samples.resize(static_cast<std::size_t>(size1) * static_cast<std::size_t>(size2) *
                      static_cast<std::size_t>(size3));
}

void copyOrClear(const std::vector<float>& source, std::vector<float>& target) {
  if (source.empty()) {
    std::fill(target.begin(), target.end(), 0.0F);
  } else {
    std::copy_n(source.begin(), std::min(source.size(), target.size()), target.begin());
  }
}

}  // namespace

void PatternState::fill(OctData& data, int number, int shownQuantity) {
  const std::lock_guard lock(mutex);
  resize(data, size[0], size[1], size[2]);
  data.range[0] = 2.0, data.range[1] = 3.0, data.range[2] = 1.5;
  if (volume.size() == data.samples.size()) {
    data.samples = volume;
  } else {
    const float value = static_cast<float>(shownQuantity) + static_cast<float>(number % 200 + 1) / 256.0F;
    std::fill(data.samples.begin(), data.samples.end(), value);
  }
}

}  // namespace oct::test

using oct::test::entered;
using oct::test::patternState;

oct::test::PatternDevice* patternDevice() {
  static oct::test::Control control;
  return &control;
}

int getDevicePropertyInt(OCTDeviceHandle device, int property) {
  if (!entered("getDevicePropertyInt", device, property)) return 0;
  return 2 * patternState().size[0];
}

double getDevicePropertyFloat(OCTDeviceHandle device, int property) {
  return entered("getDevicePropertyFloat", device, property) ? 2.0 : 0.0;
}

RawDataHandle createRawData(void) {
  return entered("createRawData") ? patternState().make<OctRawData>("raw") : nullptr;
}

void clearRawData(RawDataHandle raw) {
  if (entered("clearRawData", raw)) patternState().clear(raw);
}

DataHandle createData(void) {
  return entered("createData") ? patternState().make<OctData>("data") : nullptr;
}

void clearData(DataHandle data) {
  if (entered("clearData", data)) patternState().clear(data);
}

void startMeasurement(OCTDeviceHandle device, ScanPatternHandle pattern, int mode) {
  if (!entered("startMeasurement", device, pattern, mode)) return;
  bool first = false;
  {
    const std::lock_guard lock(patternState().mutex);
    first = patternState().measuring.insert(device).second;
  }
  if (!first) patternState().raise("startMeasurement while measuring");
}

void stopMeasurement(OCTDeviceHandle device) {
  if (!entered("stopMeasurement", device)) return;
  const std::lock_guard lock(patternState().mutex);
  patternState().measuring.erase(device);
}

int isError(void) {
  entered("isError");
  const std::lock_guard lock(patternState().mutex);
  return patternState().error.empty() ? 0 : 1;
}

int getError(char* buffer, int size) {
  entered("getError", size);
  const std::lock_guard lock(patternState().mutex);
  std::snprintf(buffer, static_cast<std::size_t>(size), "%s", patternState().error.c_str());
  const bool pending = !patternState().error.empty();
  patternState().error.clear();
  return pending ? 1 : 0;
}

// Both sensors give the same volume, sensor 0 first.
void getRawDataEx(OCTDeviceHandle device, RawDataHandle raw, int camera) {
  if (!entered("getRawDataEx", device, raw, camera)) return;
  const std::lock_guard lock(patternState().mutex);
  raw->camera = camera;
  raw->volume = camera == 0 ? patternState().acquired++ : patternState().acquired - 1;
}

void getAnalogInputData(OCTDeviceHandle device, DataHandle data) {
  if (!entered("getAnalogInputData", device, data)) return;
  oct::test::PatternState& state = patternState();
  const std::lock_guard lock(state.mutex);
  oct::test::resize(*data, state.channels, state.size[1], state.size[2]);
  oct::test::copyOrClear(state.analog, data->samples);
}

void setProcessedDataOutput(ProcessingHandle processing, DataHandle data) {
  if (!entered("setProcessedDataOutput", processing, data)) return;
  const std::lock_guard lock(patternState().mutex);
  patternState().dataOutputs[processing] = data;
}

void executeProcessing(ProcessingHandle processing, RawDataHandle raw) {
  if (!entered("executeProcessing", processing, raw)) return;
  oct::test::PatternState& state = patternState();
  OctData* data = nullptr;
  {
    const std::lock_guard lock(state.mutex);
    const ComplexDataHandle complex = state.complexOutputs[processing];
    if (complex && state.names.contains(complex)) complex->volume = raw->volume;
    data = state.dataOutputs[processing];
    if (data && !state.names.contains(data)) data = nullptr;
  }
  using oct::test::PatternDevice;
  if (data)
    state.fill(*data, raw->volume, raw->camera == 0 ? PatternDevice::sensor0 : PatternDevice::sensor1);
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

void determineSurface(DataHandle volume, DataHandle surface) {
  if (!entered("determineSurface", volume, surface)) return;
  const std::lock_guard lock(patternState().mutex);
  oct::test::resize(*surface, volume->size[1], volume->size[2], 1);
  oct::test::copyOrClear(patternState().surface, surface->samples);
}

double getRelativeReferenceIntensity(OCTDeviceHandle device, ProcessingHandle processing) {
  return entered("getRelativeReferenceIntensity", device, processing) ? 0.625 : 0.0;
}
