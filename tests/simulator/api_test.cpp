// The C functions: results by their numbers, errors, scripted failures, balance of objects.

#include <algorithm>
#include <chrono>
#include <cmath>
#include <numbers>
#include <set>
#include <thread>
#include <tuple>

#include "simulator/device_objects.h"

extern "C" int object_count_seen_from_c(void);

namespace oct::simulator::test {
namespace {

using SetOutput = void (*)(PolarizationProcessingHandle, DataHandle);

// A small device with two sensors and everything that is needed to see with it.
class DeviceApi : public DeviceObjectsTest {
 protected:
  DeviceApi() { EXPECT_EQ(pending_error(), ""); }
  ~DeviceApi() override { clearSimulatedPolarizationProcessing(polarization_); }

  // One volume from start to stop.
  void measure() {
    startMeasurement(scan_.device, scan_.pattern, 0);
    for (int sensor = 0; sensor < 2; ++sensor) {
      getRawDataEx(scan_.device, raws_[sensor], sensor);
      setComplexDataOutput(scan_.processing, fields_[sensor]);
      executeProcessing(scan_.processing, raws_[sensor]);
    }
    stopMeasurement(scan_.device);
  }
  std::vector<float> compute(SetOutput set_output) {
    set_output(polarization_, data_);
    executePolarizationProcessing(polarization_, fields_[0], fields_[1]);
    EXPECT_EQ(pending_error(), "");
    return samples_of(data_);
  }

  const Scan scan_{createSimulatedPolarizationDevice(OCT_PHANTOM_POLARIZATION_TARGET, 128, 7), 20, 3, 2.0,
                   1.5};
  const PolarizationProcessingHandle polarization_ = createSimulatedPolarizationProcessing(scan_.device);
  const OwnedRawData raws_[2];
  const OwnedComplexData fields_[2];
  const OwnedData data_;
};

TEST_F(DeviceApi, SizesAndRangesFollowDeviceAndPattern) {
  EXPECT_EQ(sizes_of(data_), Sizes{});
  EXPECT_EQ(ranges_of(data_), Ranges{});
  EXPECT_EQ(getDataPtr(data_), nullptr);
  EXPECT_EQ(getDevicePropertyInt(scan_.device, 0), 128);
  EXPECT_EQ(getDevicePropertyFloat(scan_.device, 1), 3.6);
  measure();
  compute(setPolarizationOutputI);
  EXPECT_EQ(sizes_of(data_), (Sizes{64, 20, 3}));
  EXPECT_EQ(getDataPropertyInt(data_, 5), 64 * 20 * 3 * 4);
  EXPECT_EQ(ranges_of(data_), (Ranges{3.6, 2.0, 1.5}));
  setDataRange(data_, 2.5, 1.0, 0.5);
  EXPECT_EQ(ranges_of(data_), (Ranges{2.5, 1.0, 0.5}));
  compute(setPolarizationOutputI);
  expect_errors({{[&] { setDataRange(data_, std::nan(""), 1.0, 1.0); }, "setDataRange"}});
  EXPECT_EQ(ranges_of(data_), (Ranges{3.6, 2.0, 1.5})) << "of the processing";
}

TEST_F(DeviceApi, WrongOrderAndWrongArgumentsAreErrors) {
  const Scan single(createSimulatedDevice(OCT_PHANTOM_MIRROR, 64, 1), 20, 1, 2.0, 1.5);
  const OCTDeviceHandle device = scan_.device;
  RawDataHandle const raw = raws_[0];
  DataHandle const data = data_;
  const auto process = [&] { executeProcessing(scan_.processing, raw); };
  const auto start = [&](int mode) { return [=, this] { startMeasurement(device, scan_.pattern, mode); }; };
  const auto read = [&](OCTDeviceHandle of, int camera) { return [=] { getRawDataEx(of, raw, camera); }; };
  const auto pattern = [&](int a_scans, int b_scans, double width, double length) {
    return [=] { EXPECT_EQ(createSimulatedScanPattern(device, a_scans, b_scans, width, length), nullptr); };
  };
  expect_errors({{read(device, 0), "No measurement"}, {process, ""}, {start(1), "mode"}});
  for (const Scan* scan : {&scan_, &single}) startMeasurement(scan->device, scan->pattern, 0);
  const auto gone = createData();
  clearData(gone);
  const OwnedData next;
  EXPECT_NE(gone, next);
  expect_errors(
      {{start(0), "already running"},
       {read(device, 2), "cameras 0 and 1"},
       {read(single.device, 1), "camera 0 only"},
       {[&] { EXPECT_EQ(createSimulatedPolarizationProcessing(single.device), nullptr); }, "single sensor"},
       {[&] { EXPECT_EQ(getDevicePropertyInt(device, 99), 0); }, ""},
       {[&] { EXPECT_EQ(getDevicePropertyFloat(device, 0), 0.0); }, ""},
       {[&] { EXPECT_EQ(getDataPropertyInt(data, 4), 0); }, ""},
       {[&] { EXPECT_EQ(getDataPropertyFloat(data, 2), 0.0); }, ""},
       {[&] { setPolarizationPropertyInt(polarization_, 3, 1); }, ""},
       {[&] { setPolarizationPropertyInt(polarization_, 5, 0); }, ""},
       {[&] { setPolarizationPropertyFloat(polarization_, 1, 1.0); }, ""},
       {[&] { setPolarizationFlag(polarization_, 1, 1); }, ""},
       {[&] { clearData(gone); }, "Invalid handle"},
       {[&] { clearRawData(reinterpret_cast<RawDataHandle>(data)); }, "raw data"},
       {[&] { setPolarizationOutputV(polarization_, nullptr); }, "Null handle"},
       {[] { EXPECT_EQ(createSimulatedDevice(17, 2048, 1), nullptr); }, "phantom"},
       {[] { EXPECT_EQ(createSimulatedDevice(0, 63, 1), nullptr); }, "spectrum length"},
       {pattern(0, 1, 1.0, 1.0), ""},
       {pattern(65536, 65536, 1.0, 1.0), ""},
       {pattern(1, 1, 0.0, 1.0), ""},
       {pattern(1, 1, 1.0, std::nan("")), ""},
       {[&] { setSimulatedScanRate(device, 1.0, 2); }, "pacing"},
       {[&] { setSimulatedScanRate(device, 0.0, 1); }, "rate"},
       {[&] { setSimulatedMotion(device, 3, 0.1, 1.0); }, "motion"},
       {[&] { setSimulatedMotion(device, 1, 1.1, 1.0); }, "amplitude"},
       {[&] { setSimulatedMotion(device, 2, 0.1, 0.0); }, "period"}});
  read(device, 0)();
  expect_errors({{process, "output"}});
  {
    const OwnedData temporary;
    setProcessedDataOutput(scan_.processing, temporary);
  }
  expect_errors({{process, "output"}});
  setProcessedDataOutput(single.processing, data);
  expect_errors({{[&] { executeProcessing(single.processing, raw); }, "another spectrum length"}});
  EXPECT_EQ(sizes_of(data), Sizes{});
  for (int i = 0; i < 2; ++i) stopMeasurement(device);
}

// A volume keeps its size for the sensor that has yet to give it, and for the analog input.
TEST_F(DeviceApi, SizeMayChangeInTheMiddleOfAMeasurement) {
  const ScanPatternHandle smaller = createSimulatedScanPattern(scan_.device, 10, 2, 1.0, 0.5);
  const auto change = [&] { setSimulatedScanPattern(scan_.device, smaller); };
  const auto size_of_next = [&](int sensor) {
    getRawDataEx(scan_.device, raws_[sensor], sensor);
    setProcessedDataOutput(scan_.processing, data_);
    executeProcessing(scan_.processing, raws_[sensor]);
    const auto size = sizes_of(data_);
    getAnalogInputData(scan_.device, data_);
    EXPECT_EQ(sizes_of(data_), (Sizes{2, size[1], size[2]}));
    return size;
  };
  expect_errors({{change, "No measurement"}});
  startMeasurement(scan_.device, scan_.pattern, 0);
  EXPECT_EQ(size_of_next(0), (Sizes{64, 20, 3}));
  change();
  EXPECT_EQ(size_of_next(1), (Sizes{64, 20, 3}));
  for (const int sensor : {0, 1}) EXPECT_EQ(size_of_next(sensor), (Sizes{64, 10, 2}));
  EXPECT_EQ(ranges_of(data_), (Ranges{0.0, 1.0, 0.5}));
  clearSimulatedScanPattern(smaller);
}

TEST_F(DeviceObjectsTest, FirstErrorIsKeptAndTextIsCutToFit) {
  std::thread([] { clearData(nullptr); }).join();  // seen by this thread too
  EXPECT_NE(getError(nullptr, 100), 0);
  EXPECT_NE(isError(), 0);
  char tiny[6] = "xxxxx";
  EXPECT_NE(getError(tiny, 5), 0);
  EXPECT_STREQ(tiny, "clea");
  clearData(nullptr);
  clearRawData(nullptr);
  EXPECT_EQ(pending_error().substr(0, 22), "clearData: Null handle");
  EXPECT_EQ(isError(), 0);
  EXPECT_EQ(getError(tiny, 5), 0);
  EXPECT_STREQ(tiny, "");
}

TEST_F(DeviceObjectsTest, ManyThreadsMayCreateAndClear) {
  std::vector<std::jthread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([] {
      for (int n = 0; n < 200; ++n) EXPECT_TRUE(OwnedData());
    });
}

TEST_F(DeviceApi, ProcessingAndPatternOutliveTheDevice) {
  EXPECT_EQ(object_count_seen_from_c(), 9);
  const auto device = createSimulatedDevice(OCT_PHANTOM_MIRROR, 64, 7);
  const auto processing = createSimulatedProcessing(device);
  const auto pattern = createSimulatedScanPattern(device, 20, 1, 1.0, 1.0);
  startMeasurement(device, pattern, 0);
  getRawDataEx(device, raws_[0], 0);
  clearSimulatedDevice(device);
  setProcessedDataOutput(processing, data_);
  executeProcessing(processing, raws_[0]);
  EXPECT_EQ(getDataPropertyInt(data_, 2), 20);
  clearSimulatedProcessing(processing);
  clearSimulatedScanPattern(pattern);
}

// Of a place's pure state, retardation and axis tell the three parameters.
TEST_F(DeviceApi, EveryQuantityIsOneOfItsOwn) {
  measure();
  const auto intensity = compute(setPolarizationOutputI), dopu = compute(setPolarizationOutputDOPU),
             retardation = compute(setPolarizationOutputRetardation),
             axis = compute(setPolarizationOutputOpticAxis), q = compute(setPolarizationOutputQ),
             u = compute(setPolarizationOutputU), v = compute(setPolarizationOutputV);
  EXPECT_GT(std::ranges::max(intensity), 20.0F) << "decibels";
  EXPECT_LT(std::ranges::min(intensity), 0.0F);
  EXPECT_LT(std::ranges::min(dopu), 0.5F) << "over a box of places";
  for (std::size_t n = 0; n < q.size(); ++n) {
    EXPECT_GE(dopu[n], 0.0F);
    EXPECT_LE(dopu[n], 1.0F);
    const double twice = 2.0 * retardation[n] / degrees_per_radian,
                 direction = 2.0 * axis[n] / degrees_per_radian;
    EXPECT_NEAR(q[n], std::cos(twice), 1e-3);
    EXPECT_NEAR(u[n], std::sin(twice) * std::sin(direction), 1e-3);
    EXPECT_NEAR(v[n], -std::sin(twice) * std::cos(direction), 1e-3);
  }
}

// Each property alone averages along its own axis, here over all of it; afterwards all is as before.
TEST_F(DeviceApi, PropertiesReachTheProcessing) {
  measure();
  const auto plain = compute(setPolarizationOutputQ);
  for (const auto& [output, first, initial] :
       {std::tuple{&setPolarizationOutputQ, 5, 1}, {&setPolarizationOutputDOPU, 0, 3}}) {
    const auto before = compute(output);
    for (const std::size_t distance : {1, 64, 64 * 20}) {
      const int property = first + (distance > 1) + (distance > 64);
      setPolarizationPropertyInt(polarization_, property, 1000);
      const auto averaged = compute(output);
      EXPECT_NE(averaged, before);
      for (int i = 0; i < 20; ++i) EXPECT_EQ(averaged[i], averaged[i + distance]) << property;
      setPolarizationPropertyInt(polarization_, property, initial);
    }
    EXPECT_EQ(compute(output), before);
  }
  setPolarizationPropertyFloat(polarization_, 0, 100.0);
  EXPECT_EQ(compute(setPolarizationOutputQ), plain);
  setPolarizationFlag(polarization_, 0, 1);
  EXPECT_EQ(compute(setPolarizationOutputQ), std::vector<float>(plain.size()));
}

// Calls a function with zeros; expects the neutral result.
template <class Result, class... Arguments>
void call(Result (*function)(Arguments...)) {
  if constexpr (std::is_void_v<Result>) {
    function(Arguments{}...);
  } else {
    EXPECT_EQ(function(Arguments{}...), Result{});
  }
}

void expect_planned_failure(const std::string& name, const std::function<void()>& run) {
  failSimulatedCall(name.c_str(), 1, "as planned");
  run();
  EXPECT_EQ(pending_error(), name + ": as planned");
}

TEST_F(DeviceObjectsTest, NullHandlesAreErrorsEverywhereAndDeviceFunctionsFailAsPlanned) {
  std::set<std::string> names;
  const auto name_of = [&](auto function) {
    call(function);
    const std::string error = pending_error();
    const std::string name = error.substr(0, error.find(": Null handle"));
    EXPECT_NE(name, error);
    EXPECT_TRUE(names.insert(name).second) << "the name of another one: " << name;
    return name;
  };
  const auto each = [](auto action, auto... functions) { (action(functions), ...); };
  each([&](auto function) { expect_planned_failure(name_of(function), [&] { call(function); }); },
       getDevicePropertyInt, getDevicePropertyFloat, clearRawData, clearData, clearComplexData,
       startMeasurement, stopMeasurement, getRawDataEx, getAnalogInputData, setProcessedDataOutput,
       setComplexDataOutput, executeProcessing, getDataPropertyInt, getDataPropertyFloat, setDataRange,
       getDataPtr, determineSurface, getRelativeReferenceIntensity, setPolarizationOutputI,
       setPolarizationOutputRetardation, setPolarizationOutputOpticAxis, setPolarizationOutputDOPU,
       setPolarizationOutputQ, setPolarizationOutputU, setPolarizationOutputV, setPolarizationFlag,
       setPolarizationPropertyFloat, setPolarizationPropertyInt, executePolarizationProcessing);
  expect_planned_failure("createRawData", [] { call(createRawData); });
  expect_planned_failure("createData", [] { call(createData); });
  expect_planned_failure("createComplexData", [] { call(createComplexData); });
  each(
      [&](auto function) {
        expect_errors({{[&] { failSimulatedCall(name_of(function).c_str(), 1, "never"); }, ""}});
      },
      clearSimulatedDevice, createSimulatedProcessing, clearSimulatedProcessing, createSimulatedScanPattern,
      clearSimulatedScanPattern, createSimulatedPolarizationProcessing, clearSimulatedPolarizationProcessing,
      setSimulatedScanRate, setSimulatedMotion, setSimulatedScanPattern, getLostVolumes);
}

TEST_F(DeviceObjectsTest, OnlyTheChosenCallFails) {
  for (const char* const name : {"isError", "getError", "createSimulatedDevice", "nothing"})
    expect_errors({{[&] { failSimulatedCall(name, 1, "never"); }, name},
                   {[&] { delaySimulatedCall(name, 1, 1000); }, name}});
  expect_errors({{[] { failSimulatedCall(nullptr, 1, "never"); }, ""},
                 {[] { failSimulatedCall("createData", -1, "never"); }, ""},
                 {[] { delaySimulatedCall(nullptr, 1, 1000); }, ""},
                 {[] { delaySimulatedCall("createData", -1, 1000); }, ""}});
  // The chosen call fails once and does nothing.
  failSimulatedCall("createData", 2, "out of order");
  const OwnedData first;
  const int objects = getSimulatedObjectCount();
  EXPECT_EQ(createData(), nullptr);
  EXPECT_EQ(getSimulatedObjectCount(), objects);
  EXPECT_EQ(pending_error(), "createData: out of order");
  const OwnedData third;
  EXPECT_NE(static_cast<DataHandle>(third), nullptr);
  // Zero: every call, until failures are cleared.
  failSimulatedCall("createData", 0, "cable");
  for (int i = 0; i < 3; ++i) expect_errors({{[] { call(createData); }, "createData: cable"}});
  clearSimulatedFailures();
  const OwnedData fourth;
  EXPECT_EQ(pending_error(), "");
}

TEST_F(DeviceApi, CallsTakeLongOrHangUntilTheyAreReleased) {
  using Clock = std::chrono::steady_clock;
  delaySimulatedCall("createData", 2, 20);
  for (const bool is_late : {false, true}) {
    const auto begin = Clock::now();
    const OwnedData data;
    EXPECT_TRUE(Clock::now() - begin >= std::chrono::milliseconds(20) || !is_late);
  }
  // Neither the end of the measurement nor other calls end the waiting; what is done, is done afterwards.
  startMeasurement(scan_.device, scan_.pattern, 0);
  delaySimulatedCall("getRawDataEx", 0, -1);
  failSimulatedCall("getRawDataEx", 2, "cable");
  std::jthread first([&] { getRawDataEx(scan_.device, raws_[0], 0); });
  while (getSimulatedWaitingCalls() < 1) std::this_thread::yield();
  std::jthread second([&] { getRawDataEx(scan_.device, raws_[1], 1); });
  while (getSimulatedWaitingCalls() < 2) std::this_thread::yield();
  clearSimulatedFailures();
  stopMeasurement(scan_.device);
  EXPECT_TRUE(OwnedData());
  EXPECT_EQ(getSimulatedWaitingCalls(), 2);
  startMeasurement(scan_.device, scan_.pattern, 0);
  releaseSimulatedCalls();
  first.join();
  second.join();
  EXPECT_EQ(getSimulatedWaitingCalls(), 0);
  EXPECT_EQ(pending_error(), "getRawDataEx: cable");
  setProcessedDataOutput(scan_.processing, data_);
  executeProcessing(scan_.processing, raws_[0]);
  EXPECT_EQ(sizes_of(data_), (Sizes{64, 20, 3}));
  getRawDataEx(scan_.device, raws_[0], 0);
}

}  // namespace
}  // namespace oct::simulator::test
