// Scripted failures, and the functions of devices with two sensors.

#include <algorithm>

#include "device_objects.h"

namespace oct::simulator::test {
namespace {

/// All that the functions take; of itself null handles.
struct Handles {
  OCTDeviceHandle device = nullptr;
  ScanPatternHandle pattern = nullptr;
  ProcessingHandle processings[2] = {};
  PolarizationProcessingHandle polarization = nullptr;
  RawDataHandle raws[2] = {};
  ComplexDataHandle fields[2] = {};
  DataHandle data = nullptr;
  DataHandle surface = nullptr;
};

/// A small device with two sensors and everything that is needed to see with it.
class TwoSensors : public DeviceObjectsTest {
 protected:
  TwoSensors() { EXPECT_EQ(pendingError(), ""); }
  ~TwoSensors() override {
      clearSimulatedFailures();
    clearSimulatedPolarizationProcessing(all_.polarization);
    clearSimulatedProcessing(all_.processings[1]);
  }

  /// One volume from start to stop, for one quantity.
  void measure(void (*setOutput)(PolarizationProcessingHandle, DataHandle)) {
    startMeasurement(all_.device, all_.pattern, 0);
    for (int sensor = 0; sensor < 2; ++sensor) {
      getRawDataEx(all_.device, all_.raws[sensor], sensor);
      setComplexDataOutput(all_.processings[sensor], all_.fields[sensor]);
      executeProcessing(all_.processings[sensor], all_.raws[sensor]);
    }
    setOutput(all_.polarization, all_.data);
    compute();
    stopMeasurement(all_.device);
  }
  void compute() { executePolarizationProcessing(all_.polarization, all_.fields[0], all_.fields[1]); }
  float sample() const { return getDataPtr(all_.data)[30]; }

 private:
  const Scan scan_{createSimulatedPolarizationDevice(OCT_PHANTOM_POLARIZATION_TARGET, 256, 7), 20, 3, 2.0,
                   1.5};
  const OwnedRawData raws_[2];
  const OwnedComplexData fields_[2];
  const OwnedData data_[2];

 protected:
  const Handles all_{scan_.device,
                     scan_.pattern,
                     {scan_.processing, createSimulatedProcessing(scan_.device)},
                     createSimulatedPolarizationProcessing(scan_.device),
                     {raws_[0], raws_[1]},
                     {fields_[0], fields_[1]},
                     data_[0],
                     data_[1]};
};

TEST_F(TwoSensors, EveryQuantityHasItsRange) {
  struct Case {
    void (*setOutput)(PolarizationProcessingHandle, DataHandle);
    float lowest, highest;
  };
  for (const auto& [setOutput, lowest, highest] :
       {Case{setPolarizationOutputI, -60.0f, 80.0f}, Case{setPolarizationOutputRetardation, 0.0f, 90.0f},
        Case{setPolarizationOutputOpticAxis, 0.0f, 180.0f}, Case{setPolarizationOutputDOPU, 0.0f, 1.0f},
        Case{setPolarizationOutputQ, -1.0f, 1.0f}, Case{setPolarizationOutputU, -1.0f, 1.0f},
        Case{setPolarizationOutputV, -1.0f, 1.0f}}) {
    measure(setOutput);
    ASSERT_EQ(pendingError(), "");
    ASSERT_EQ(sizesOf(all_.data), (Sizes{128, 20, 3}));
    EXPECT_EQ(rangesOf(all_.data), (Ranges{3.6, 2.0, 1.5}));
    const auto samples = samplesOf(all_.data);
    const auto [least, most] = std::ranges::minmax(samples);
    EXPECT_GE(least, lowest);
    EXPECT_LE(most, highest);
    EXPECT_GT(most - least, 0.4f * (highest - lowest));  // the range is used
  }
}

TEST_F(TwoSensors, PropertiesReachTheProcessing) {
  PolarizationProcessingHandle const processing = all_.polarization;
  // Each property alone changes the sample; afterwards it is as before.
  const auto expectChanges = [&](std::initializer_list<int> properties, int value, int initial) {
    const float plain = sample();
    for (const int property : properties) {
      setPolarizationPropertyInt(processing, property, value);
      compute();
      EXPECT_NE(sample(), plain) << property;
      setPolarizationPropertyInt(processing, property, initial);
    }
    compute();
    EXPECT_EQ(sample(), plain);
  };
  measure(setPolarizationOutputQ);
  const float plain = sample();
  expectChanges({5, 6, 7}, 9, 1);
  setPolarizationPropertyFloat(processing, 0, 100.0);
  compute();
  EXPECT_EQ(sample(), plain);
  setPolarizationFlag(processing, 0, 1);
  compute();
  EXPECT_EQ(sample(), 0.0f);
  setPolarizationFlag(processing, 0, 0);
  setPolarizationOutputDOPU(processing, all_.data);
  compute();
  expectChanges({0, 1, 2}, 7, 3);
  expectErrors({{[&] { setPolarizationPropertyInt(processing, 3, 1); }, ""},
                {[&] { setPolarizationPropertyInt(processing, 5, 0); }, ""},
                {[&] { setPolarizationPropertyFloat(processing, 1, 1.0); }, ""},
                {[&] { setPolarizationFlag(processing, 1, 1); }, ""}});
}

TEST_F(TwoSensors, OneSensorHasNoPolarizationAndNoSecondCamera) {
  const Scan single(createSimulatedDevice(OCT_PHANTOM_MIRROR, 256, 1), 20, 3, 2.0, 1.5);
  startMeasurement(single.device, single.pattern, 0);
  startMeasurement(all_.device, all_.pattern, 0);
  expectErrors(
      {{[&] { EXPECT_EQ(createSimulatedPolarizationProcessing(single.device), nullptr); }, "single sensor"},
       {[&] { getRawDataEx(single.device, all_.raws[0], 1); }, "camera 0 only"},
       {[&] { getRawDataEx(all_.device, all_.raws[0], 2); }, "cameras 0 and 1"}});
}

TEST_F(TwoSensors, TheChosenCallFailsOnceAndDoesNothing) {
  failSimulatedCall("createData", 2, "out of order");
  const OwnedData first;
  EXPECT_NE(static_cast<DataHandle>(first), nullptr);
  const int objects = getSimulatedObjectCount();
  EXPECT_EQ(createData(), nullptr);
  EXPECT_EQ(getSimulatedObjectCount(), objects);
  EXPECT_EQ(pendingError(), "createData: out of order");
  const OwnedData third;
  EXPECT_NE(static_cast<DataHandle>(third), nullptr);
}

TEST_F(TwoSensors, ZeroFailsEveryCallUntilFailuresAreCleared) {
  failSimulatedCall("getRawDataEx", 0, "cable");
  startMeasurement(all_.device, all_.pattern, 0);
  for (int i = 0; i < 3; ++i) {
    getRawDataEx(all_.device, all_.raws[0], 0);
    EXPECT_EQ(pendingError(), "getRawDataEx: cable");
  }
  clearSimulatedFailures();
  getRawDataEx(all_.device, all_.raws[0], 0);
  EXPECT_EQ(pendingError(), "");
}

using H = const Handles&;

struct Call {
  const char* function;
  std::function<void(H)> run;  // with what the function returns when it fails
};

/// Every function that a test can let fail.
const std::vector<Call>& deviceCalls() {
  static const std::vector<Call> calls{
      {"getDevicePropertyInt", [](H h) { EXPECT_EQ(getDevicePropertyInt(h.device, 0), 0); }},
      {"getDevicePropertyFloat", [](H h) { EXPECT_EQ(getDevicePropertyFloat(h.device, 1), 0.0); }},
      {"createRawData", [](H) { EXPECT_EQ(createRawData(), nullptr); }},
      {"clearRawData", [](H h) { clearRawData(h.raws[0]); }},
      {"createData", [](H) { EXPECT_EQ(createData(), nullptr); }},
      {"clearData", [](H h) { clearData(h.data); }},
      {"createComplexData", [](H) { EXPECT_EQ(createComplexData(), nullptr); }},
      {"clearComplexData", [](H h) { clearComplexData(h.fields[0]); }},
      {"startMeasurement", [](H h) { startMeasurement(h.device, h.pattern, 0); }},
      {"stopMeasurement", [](H h) { stopMeasurement(h.device); }},
      {"getRawDataEx", [](H h) { getRawDataEx(h.device, h.raws[0], 0); }},
      {"getAnalogInputData", [](H h) { getAnalogInputData(h.device, h.surface); }},
      {"setProcessedDataOutput", [](H h) { setProcessedDataOutput(h.processings[0], h.data); }},
      {"setComplexDataOutput", [](H h) { setComplexDataOutput(h.processings[0], h.fields[0]); }},
      {"executeProcessing", [](H h) { executeProcessing(h.processings[0], h.raws[0]); }},
      {"getDataPropertyInt", [](H h) { EXPECT_EQ(getDataPropertyInt(h.data, 1), 0); }},
      {"getDataPropertyFloat", [](H h) { EXPECT_EQ(getDataPropertyFloat(h.data, 3), 0.0); }},
      {"setDataRange", [](H h) { setDataRange(h.data, 1.0, 1.0, 1.0); }},
      {"getDataPtr", [](H h) { EXPECT_EQ(getDataPtr(h.data), nullptr); }},
      {"determineSurface", [](H h) { determineSurface(h.data, h.surface); }},
      {"getRelativeReferenceIntensity",
       [](H h) { EXPECT_EQ(getRelativeReferenceIntensity(h.device, h.processings[0]), 0.0); }},
      {"setPolarizationOutputI", [](H h) { setPolarizationOutputI(h.polarization, h.data); }},
      {"setPolarizationOutputRetardation",
       [](H h) { setPolarizationOutputRetardation(h.polarization, h.data); }},
      {"setPolarizationOutputOpticAxis", [](H h) { setPolarizationOutputOpticAxis(h.polarization, h.data); }},
      {"setPolarizationOutputDOPU", [](H h) { setPolarizationOutputDOPU(h.polarization, h.data); }},
      {"setPolarizationOutputQ", [](H h) { setPolarizationOutputQ(h.polarization, h.data); }},
      {"setPolarizationOutputU", [](H h) { setPolarizationOutputU(h.polarization, h.data); }},
      {"setPolarizationOutputV", [](H h) { setPolarizationOutputV(h.polarization, h.data); }},
      {"setPolarizationFlag", [](H h) { setPolarizationFlag(h.polarization, 0, 1); }},
      {"setPolarizationPropertyFloat", [](H h) { setPolarizationPropertyFloat(h.polarization, 0, 1.0); }},
      {"setPolarizationPropertyInt", [](H h) { setPolarizationPropertyInt(h.polarization, 5, 2); }},
      {"executePolarizationProcessing",
       [](H h) { executePolarizationProcessing(h.polarization, h.fields[0], h.fields[1]); }}};
  return calls;
}

TEST_F(TwoSensors, EveryDeviceFunctionCanBeMadeToFail) {
  measure(setPolarizationOutputQ);
  startMeasurement(all_.device, all_.pattern, 0);
  const float before = sample();
  for (const auto& [function, run] : deviceCalls()) {
    failSimulatedCall(function, 1, "as planned");
    run(all_);
    EXPECT_EQ(pendingError(), std::string(function) + ": as planned");
  }
  // Nothing of all that has happened.
  EXPECT_EQ(rangesOf(all_.data), (Ranges{3.6, 2.0, 1.5}));
  EXPECT_EQ(sizesOf(all_.surface), Sizes{});
  compute();
  EXPECT_EQ(sample(), before);
  getRawDataEx(all_.device, all_.raws[0], 0);
  EXPECT_EQ(pendingError(), "");
}

TEST_F(TwoSensors, UnknownFunctionsAndCallsCannotBeScripted) {
  for (const char* const name : {"isError", "getError", "createSimulatedDevice", "nothing"})
    expectErrors({{[&] { failSimulatedCall(name, 1, "never"); }, name}});
  expectErrors({{[] { failSimulatedCall(nullptr, 1, "never"); }, ""},
                {[] { failSimulatedCall("createData", -1, "never"); }, ""}});
}

TEST_F(TwoSensors, NullHandlesAreErrorsEverywhere) {
  const auto expectNullHandle = [](const Call& call, H handles) {
    call.run(handles);
    EXPECT_EQ(pendingError().rfind(std::string(call.function) + ": Null handle", 0), 0u) << call.function;
  };
  for (const Call& call : deviceCalls())
    if (std::string(call.function).rfind("create", 0) != 0) expectNullHandle(call, {});
  const std::vector<Call> simulatorCalls{
      {"clearSimulatedDevice", [](H) { clearSimulatedDevice(nullptr); }},
      {"createSimulatedProcessing", [](H) { EXPECT_EQ(createSimulatedProcessing(nullptr), nullptr); }},
      {"clearSimulatedProcessing", [](H) { clearSimulatedProcessing(nullptr); }},
      {"createSimulatedScanPattern",
       [](H) { EXPECT_EQ(createSimulatedScanPattern(nullptr, 1, 1, 1.0, 1.0), nullptr); }},
      {"clearSimulatedScanPattern", [](H) { clearSimulatedScanPattern(nullptr); }},
      {"createSimulatedPolarizationProcessing",
       [](H) { EXPECT_EQ(createSimulatedPolarizationProcessing(nullptr), nullptr); }},
      {"clearSimulatedPolarizationProcessing", [](H) { clearSimulatedPolarizationProcessing(nullptr); }},
      {"setSimulatedScanRate", [](H) { setSimulatedScanRate(nullptr, 1.0, 0); }},
      {"setSimulatedMotion", [](H) { setSimulatedMotion(nullptr, 0, 0.0, 1.0); }},
      {"setPolarizationOutputV", [](H h) { setPolarizationOutputV(h.polarization, nullptr); }}};
  for (const Call& call : simulatorCalls) expectNullHandle(call, all_);
}

}  // namespace
}  // namespace oct::simulator::test
