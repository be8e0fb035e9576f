// Scripted failures, the record of calls, and the functions of devices with two sensors.

#include "oct_device/oct_device.h"
#include "oct_device/oct_simulator.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <vector>

namespace {

std::string pendingError() {
  char text[512] = "unchanged";
  return getError(text, sizeof text) ? text : "";
}

std::vector<std::string> recordedCalls() {
  std::vector<std::string> calls;
  for (int index = 0; index < getSimulatedCallCount(); ++index) {
    char text[256];
    const int length = getSimulatedCall(index, text, sizeof text);
    EXPECT_EQ(length, static_cast<int>(std::strlen(text)));
    calls.emplace_back(text);
  }
  return calls;
}

std::string number(const void* handle) {
  std::string text("#");
  return text.append(std::to_string(reinterpret_cast<std::uintptr_t>(handle)));
}

/// A small device with two sensors and everything that is needed to see with it.
class TwoSensors : public testing::Test {
protected:
  void SetUp() override {
    pendingError();
    objectsBefore_ = getSimulatedObjectCount();
    device_ = createSimulatedPolarizationDevice(OCT_PHANTOM_POLARIZATION_TARGET, 256, 7);
    for (auto& processing : processings_) processing = createSimulatedProcessing(device_);
    polarization_ = createSimulatedPolarizationProcessing(device_);
    pattern_ = createSimulatedScanPattern(device_, 20, 3, 2.0, 1.5);
    for (auto& raw : raws_) raw = createRawData();
    for (auto& field : fields_) field = createComplexData();
    data_ = createData();
    surface_ = createData();
    ASSERT_EQ(pendingError(), "");
  }

  void TearDown() override {
    recordSimulatedCalls(0);
    clearSimulatedFailures();
    clearData(data_);
    clearData(surface_);
    for (const auto field : fields_) clearComplexData(field);
    for (const auto raw : raws_) clearRawData(raw);
    clearSimulatedScanPattern(pattern_);
    clearSimulatedPolarizationProcessing(polarization_);
    for (const auto processing : processings_) clearSimulatedProcessing(processing);
    clearSimulatedDevice(device_);
    EXPECT_EQ(pendingError(), "");
    EXPECT_EQ(getSimulatedObjectCount(), objectsBefore_);
  }

  /// One volume from start to stop, for one quantity.
  void measure(void (*setOutput)(PolarizationProcessingHandle, DataHandle)) {
    startMeasurement(device_, pattern_, 0);
    for (int sensor = 0; sensor < 2; ++sensor) {
      getRawDataEx(device_, raws_[sensor], sensor);
      setComplexDataOutput(processings_[sensor], fields_[sensor]);
      executeProcessing(processings_[sensor], raws_[sensor]);
    }
    setOutput(polarization_, data_);
    executePolarizationProcessing(polarization_, fields_[0], fields_[1]);
    stopMeasurement(device_);
  }

  int objectsBefore_ = 0;
  OCTDeviceHandle device_ = nullptr;
  ProcessingHandle processings_[2] = {};
  PolarizationProcessingHandle polarization_ = nullptr;
  ScanPatternHandle pattern_ = nullptr;
  RawDataHandle raws_[2] = {};
  ComplexDataHandle fields_[2] = {};
  DataHandle data_ = nullptr;
  DataHandle surface_ = nullptr;
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
    ASSERT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_1), 128);
    ASSERT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_2), 20);
    ASSERT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_3), 3);
    EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, OCT_DATA_RANGE_1), 3.6);
    EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, OCT_DATA_RANGE_3), 1.5);
    const float* const samples = getDataPtr(data_);
    float least = samples[0], most = samples[0];
    for (int n = 0; n < 128 * 60; ++n) {
      least = std::min(least, samples[n]);
      most = std::max(most, samples[n]);
    }
    EXPECT_GE(least, lowest);
    EXPECT_LE(most, highest);
    EXPECT_GT(most - least, 0.4f * (highest - lowest));  // the range is used
  }
}

TEST_F(TwoSensors, PropertiesReachTheProcessing) {
  measure(setPolarizationOutputQ);
  const auto sample = [&] { return getDataPtr(data_)[30]; };
  const float plain = sample();
  const auto repeat = [&] { executePolarizationProcessing(polarization_, fields_[0], fields_[1]); };
  for (const int property : {5, 6, 7}) {
    setPolarizationPropertyInt(polarization_, property, 9);
    repeat();
    EXPECT_NE(sample(), plain) << property;
    setPolarizationPropertyInt(polarization_, property, 1);
  }
  setPolarizationPropertyFloat(polarization_, 0, 100.0);
  repeat();
  EXPECT_EQ(sample(), plain);
  setPolarizationFlag(polarization_, 0, 1);
  repeat();
  EXPECT_EQ(sample(), 0.0f);
  setPolarizationFlag(polarization_, 0, 0);
  setPolarizationOutputDOPU(polarization_, data_);
  repeat();
  const float dopu = sample();
  for (const int property : {0, 1, 2}) {
    setPolarizationPropertyInt(polarization_, property, 7);
    repeat();
    EXPECT_NE(sample(), dopu) << property;
    setPolarizationPropertyInt(polarization_, property, 3);
  }
  repeat();
  EXPECT_EQ(sample(), dopu);
  for (const auto& call : std::vector<std::function<void()>>{
           [&] { setPolarizationPropertyInt(polarization_, 3, 1); },
           [&] { setPolarizationPropertyInt(polarization_, 5, 0); },
           [&] { setPolarizationPropertyFloat(polarization_, 1, 1.0); },
           [&] { setPolarizationFlag(polarization_, 1, 1); }}) {
    call();
    EXPECT_NE(pendingError(), "");
  }
}

TEST_F(TwoSensors, OneSensorHasNoPolarizationAndNoSecondCamera) {
  const auto single = createSimulatedDevice(OCT_PHANTOM_MIRROR, 256, 1);
  EXPECT_EQ(createSimulatedPolarizationProcessing(single), nullptr);
  EXPECT_NE(pendingError().find("single sensor"), std::string::npos);
  startMeasurement(single, pattern_, 0);
  getRawDataEx(single, raws_[0], 1);
  EXPECT_NE(pendingError().find("camera 0 only"), std::string::npos);
  clearSimulatedDevice(single);
  startMeasurement(device_, pattern_, 0);
  getRawDataEx(device_, raws_[0], 2);
  EXPECT_NE(pendingError().find("cameras 0 and 1"), std::string::npos);
}

TEST_F(TwoSensors, CallsAreRecordedInOrderWithTheirArguments) {
  recordSimulatedCalls(1);
  measure(setPolarizationOutputDOPU);
  setDataRange(data_, 1.25, 2.0, 3.0);
  isError();
  const auto extra = createData();
  clearData(extra);
  getDataPtr(nullptr);
  char text[100];
  getError(text, 100);
  recordSimulatedCalls(0);
  isError();  // no longer recorded
  const auto device = number(device_);
  const std::vector<std::string> expected{
      "startMeasurement(" + device + ", " + number(pattern_) + ", 0)",
      "getRawDataEx(" + device + ", " + number(raws_[0]) + ", 0)",
      "setComplexDataOutput(" + number(processings_[0]) + ", " + number(fields_[0]) + ")",
      "executeProcessing(" + number(processings_[0]) + ", " + number(raws_[0]) + ")",
      "getRawDataEx(" + device + ", " + number(raws_[1]) + ", 1)",
      "setComplexDataOutput(" + number(processings_[1]) + ", " + number(fields_[1]) + ")",
      "executeProcessing(" + number(processings_[1]) + ", " + number(raws_[1]) + ")",
      "setPolarizationOutputDOPU(" + number(polarization_) + ", " + number(data_) + ")",
      "executePolarizationProcessing(" + number(polarization_) + ", " + number(fields_[0]) + ", " +
          number(fields_[1]) + ")",
      "stopMeasurement(" + device + ")",
      "setDataRange(" + number(data_) + ", 1.25, 2, 3)",
      "isError()",
      "createData() = " + number(extra),
      "clearData(" + number(extra) + ")",
      "getDataPtr(null)",
      "getError(100)"};
  EXPECT_EQ(recordedCalls(), expected);
  char cut[6];
  EXPECT_EQ(getSimulatedCall(0, cut, sizeof cut), static_cast<int>(expected[0].size()));
  EXPECT_STREQ(cut, "start");
  EXPECT_EQ(getSimulatedCall(99, cut, sizeof cut), 0);
  EXPECT_NE(pendingError(), "");
  recordSimulatedCalls(1);
  EXPECT_EQ(getSimulatedCallCount(), 0);
}

TEST_F(TwoSensors, TheChosenCallFailsOnceAndDoesNothing) {
  failSimulatedCall("createData", 2, "out of order");
  const auto first = createData();
  EXPECT_NE(first, nullptr);
  recordSimulatedCalls(1);
  const int objects = getSimulatedObjectCount();
  EXPECT_EQ(createData(), nullptr);
  EXPECT_EQ(getSimulatedObjectCount(), objects);
  EXPECT_EQ(pendingError(), "createData: out of order");
  const auto third = createData();
  EXPECT_NE(third, nullptr);
  EXPECT_EQ(recordedCalls().front(), "createData() = null");
  clearData(first);
  clearData(third);
}

TEST_F(TwoSensors, ZeroFailsEveryCallUntilFailuresAreCleared) {
  failSimulatedCall("getRawDataEx", 0, "cable");
  startMeasurement(device_, pattern_, 0);
  for (int i = 0; i < 3; ++i) {
    getRawDataEx(device_, raws_[0], 0);
    EXPECT_EQ(pendingError(), "getRawDataEx: cable");
  }
  clearSimulatedFailures();
  getRawDataEx(device_, raws_[0], 0);
  EXPECT_EQ(pendingError(), "");
}

TEST_F(TwoSensors, EveryDeviceFunctionCanBeMadeToFail) {
  measure(setPolarizationOutputQ);
  startMeasurement(device_, pattern_, 0);
  const std::vector<std::pair<const char*, std::function<void()>>> calls{
      {"getDevicePropertyInt", [&] { EXPECT_EQ(getDevicePropertyInt(device_, 0), 0); }},
      {"getDevicePropertyFloat", [&] { EXPECT_EQ(getDevicePropertyFloat(device_, 1), 0.0); }},
      {"createRawData", [&] { EXPECT_EQ(createRawData(), nullptr); }},
      {"clearRawData", [&] { clearRawData(raws_[0]); }},
      {"createData", [&] { EXPECT_EQ(createData(), nullptr); }},
      {"clearData", [&] { clearData(data_); }},
      {"createComplexData", [&] { EXPECT_EQ(createComplexData(), nullptr); }},
      {"clearComplexData", [&] { clearComplexData(fields_[0]); }},
      {"startMeasurement", [&] { startMeasurement(device_, pattern_, 0); }},
      {"stopMeasurement", [&] { stopMeasurement(device_); }},
      {"getRawDataEx", [&] { getRawDataEx(device_, raws_[0], 0); }},
      {"getAnalogInputData", [&] { getAnalogInputData(device_, surface_); }},
      {"setProcessedDataOutput", [&] { setProcessedDataOutput(processings_[0], data_); }},
      {"setComplexDataOutput", [&] { setComplexDataOutput(processings_[0], fields_[0]); }},
      {"executeProcessing", [&] { executeProcessing(processings_[0], raws_[0]); }},
      {"getDataPropertyInt", [&] { EXPECT_EQ(getDataPropertyInt(data_, 1), 0); }},
      {"getDataPropertyFloat", [&] { EXPECT_EQ(getDataPropertyFloat(data_, 3), 0.0); }},
      {"setDataRange", [&] { setDataRange(data_, 1.0, 1.0, 1.0); }},
      {"getDataPtr", [&] { EXPECT_EQ(getDataPtr(data_), nullptr); }},
      {"determineSurface", [&] { determineSurface(data_, surface_); }},
      {"getRelativeReferenceIntensity",
       [&] { EXPECT_EQ(getRelativeReferenceIntensity(device_, processings_[0]), 0.0); }},
      {"setPolarizationOutputI", [&] { setPolarizationOutputI(polarization_, data_); }},
      {"setPolarizationOutputRetardation", [&] { setPolarizationOutputRetardation(polarization_, data_); }},
      {"setPolarizationOutputOpticAxis", [&] { setPolarizationOutputOpticAxis(polarization_, data_); }},
      {"setPolarizationOutputDOPU", [&] { setPolarizationOutputDOPU(polarization_, data_); }},
      {"setPolarizationOutputQ", [&] { setPolarizationOutputQ(polarization_, data_); }},
      {"setPolarizationOutputU", [&] { setPolarizationOutputU(polarization_, data_); }},
      {"setPolarizationOutputV", [&] { setPolarizationOutputV(polarization_, data_); }},
      {"setPolarizationFlag", [&] { setPolarizationFlag(polarization_, 0, 1); }},
      {"setPolarizationPropertyFloat", [&] { setPolarizationPropertyFloat(polarization_, 0, 1.0); }},
      {"setPolarizationPropertyInt", [&] { setPolarizationPropertyInt(polarization_, 5, 2); }},
      {"executePolarizationProcessing",
       [&] { executePolarizationProcessing(polarization_, fields_[0], fields_[1]); }}};
  const float before = getDataPtr(data_)[30];
  for (const auto& [name, call] : calls) {
    failSimulatedCall(name, 1, "as planned");
    call();
    EXPECT_EQ(pendingError(), std::string(name) + ": as planned");
  }
  // Nothing of all that has happened.
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 3), 3.6);
  EXPECT_EQ(getDataPropertyInt(surface_, 1), 0);
  executePolarizationProcessing(polarization_, fields_[0], fields_[1]);
  EXPECT_EQ(getDataPtr(data_)[30], before);
  getRawDataEx(device_, raws_[0], 0);
  EXPECT_EQ(pendingError(), "");
}

TEST_F(TwoSensors, UnknownFunctionsAndCallsCannotBeScripted) {
  for (const char* const name : {"isError", "getError", "createSimulatedDevice", "nothing"}) {
    failSimulatedCall(name, 1, "never");
    EXPECT_NE(pendingError().find(name), std::string::npos);
  }
  failSimulatedCall(nullptr, 1, "never");
  EXPECT_NE(pendingError(), "");
  failSimulatedCall("createData", -1, "never");
  EXPECT_NE(pendingError(), "");
}

TEST_F(TwoSensors, NullHandlesAreErrorsInThePolarizationFunctions) {
  const std::vector<std::pair<const char*, std::function<void()>>> calls{
      {"clearComplexData", [] { clearComplexData(nullptr); }},
      {"setComplexDataOutput", [] { setComplexDataOutput(nullptr, nullptr); }},
      {"getAnalogInputData", [] { getAnalogInputData(nullptr, nullptr); }},
      {"determineSurface", [] { determineSurface(nullptr, nullptr); }},
      {"getRelativeReferenceIntensity",
       [] { EXPECT_EQ(getRelativeReferenceIntensity(nullptr, nullptr), 0.0); }},
      {"setPolarizationOutputI", [] { setPolarizationOutputI(nullptr, nullptr); }},
      {"setPolarizationOutputV", [&] { setPolarizationOutputV(polarization_, nullptr); }},
      {"setPolarizationFlag", [] { setPolarizationFlag(nullptr, 0, 0); }},
      {"setPolarizationPropertyFloat", [] { setPolarizationPropertyFloat(nullptr, 0, 0.0); }},
      {"setPolarizationPropertyInt", [] { setPolarizationPropertyInt(nullptr, 0, 1); }},
      {"executePolarizationProcessing", [] { executePolarizationProcessing(nullptr, nullptr, nullptr); }},
      {"createSimulatedPolarizationProcessing",
       [] { EXPECT_EQ(createSimulatedPolarizationProcessing(nullptr), nullptr); }},
      {"clearSimulatedPolarizationProcessing", [] { clearSimulatedPolarizationProcessing(nullptr); }},
      {"setSimulatedScanRate", [] { setSimulatedScanRate(nullptr, 1.0, 0); }},
      {"setSimulatedMotion", [] { setSimulatedMotion(nullptr, 0, 0.0, 1.0); }}};
  for (const auto& [name, call] : calls) {
    call();
    EXPECT_EQ(pendingError().rfind(std::string(name) + ": Null handle", 0), 0u) << name;
  }
}

}  // namespace
