// The C functions: results, layout, errors, balance of objects.

#include "oct_device/oct_device.h"
#include "oct_device/oct_simulator.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cmath>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

extern "C" int objectCountSeenFromC(void);

namespace {

/// Fetches the pending error, empty if there is none.
std::string pendingError() {
  char text[512] = "unchanged";
  return getError(text, sizeof text) ? text : "";
}

/// A mirror in front of a device with everything that is needed to see it.
class DeviceApi : public testing::Test {
protected:
  static constexpr int kAScans = 24;
  static constexpr int kBScans = 3;

  void SetUp() override {
    pendingError();
    objectsBefore_ = getSimulatedObjectCount();
    device_ = createSimulatedDevice(OCT_PHANTOM_MIRROR, 256, 7);
    processing_ = createSimulatedProcessing(device_);
    pattern_ = createSimulatedScanPattern(device_, kAScans, kBScans, 2.0, 1.5);
    raw_ = createRawData();
    data_ = createData();
    ASSERT_EQ(pendingError(), "");
  }

  void TearDown() override {
    clearData(data_);
    clearRawData(raw_);
    clearSimulatedScanPattern(pattern_);
    clearSimulatedProcessing(processing_);
    clearSimulatedDevice(device_);
    EXPECT_EQ(pendingError(), "");
    EXPECT_EQ(getSimulatedObjectCount(), objectsBefore_);
  }

  void measure() {
    startMeasurement(device_, pattern_, 0);
    setProcessedDataOutput(processing_, data_);
    getRawDataEx(device_, raw_, 0);
    executeProcessing(processing_, raw_);
    stopMeasurement(device_);
  }

  int objectsBefore_ = 0;
  OCTDeviceHandle device_ = nullptr;
  ProcessingHandle processing_ = nullptr;
  ScanPatternHandle pattern_ = nullptr;
  RawDataHandle raw_ = nullptr;
  DataHandle data_ = nullptr;
};

TEST_F(DeviceApi, DevicePropertiesDescribeTheSpectrometer) {
  EXPECT_EQ(getDevicePropertyInt(device_, 0), 256);
  EXPECT_DOUBLE_EQ(getDevicePropertyFloat(device_, 1), 3.6);
}

TEST_F(DeviceApi, EmptyDataHasNoSizeAndIsNoError) {
  for (const int property : {1, 2, 3, 5}) EXPECT_EQ(getDataPropertyInt(data_, property), 0);
  for (const int property : {3, 4, 5}) EXPECT_EQ(getDataPropertyFloat(data_, property), 0.0);
  EXPECT_EQ(getDataPtr(data_), nullptr);
  EXPECT_EQ(isError(), 0);
}

TEST_F(DeviceApi, SizesAndRangesFollowDeviceAndPattern) {
  measure();
  ASSERT_EQ(pendingError(), "");
  EXPECT_EQ(getDataPropertyInt(data_, 1), 128);
  EXPECT_EQ(getDataPropertyInt(data_, 2), kAScans);
  EXPECT_EQ(getDataPropertyInt(data_, 3), kBScans);
  EXPECT_EQ(getDataPropertyInt(data_, 5), 128 * kAScans * kBScans * 4);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 3), 3.6);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 4), 2.0);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 5), 1.5);
}

TEST_F(DeviceApi, DepthIsTheFastestAxis) {
  measure();
  ASSERT_EQ(pendingError(), "");
  const float* samples = getDataPtr(data_);
  for (int column = 0; column < kAScans * kBScans; ++column) {
    const float* aScan = samples + column * 128;
    // The mirror lies 1 mm deep, at sample 35.6 of 128, in every A-scan; samples before it are dark.
    EXPECT_GT(aScan[36], aScan[30] + 20.0f) << column;
    EXPECT_GT(aScan[36], aScan[70] + 20.0f) << column;
  }
}

TEST_F(DeviceApi, RangesCanBeReplacedUntilTheNextProcessing) {
  measure();
  setDataRange(data_, 2.5, 1.0, 0.5);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 3), 2.5);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 4), 1.0);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 5), 0.5);
  executeProcessing(processing_, raw_);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 3), 3.6);
  setDataRange(data_, std::nan(""), 1.0, 1.0);
  EXPECT_NE(pendingError().find("setDataRange"), std::string::npos);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 3), 3.6);
}

TEST_F(DeviceApi, RawDataWithoutMeasurementIsAnError) {
  getRawDataEx(device_, raw_, 0);
  EXPECT_NE(isError(), 0);
  EXPECT_NE(pendingError().find("No measurement"), std::string::npos);
  EXPECT_EQ(isError(), 0);
  executeProcessing(processing_, raw_);
  EXPECT_NE(pendingError(), "");
}

TEST_F(DeviceApi, WrongOrderAndWrongArgumentsAreErrors) {
  startMeasurement(device_, pattern_, 1);
  EXPECT_NE(pendingError().find("mode"), std::string::npos);
  startMeasurement(device_, pattern_, 0);
  EXPECT_EQ(isError(), 0);
  startMeasurement(device_, pattern_, 0);
  EXPECT_NE(pendingError().find("already running"), std::string::npos);
  getRawDataEx(device_, raw_, 1);
  EXPECT_NE(pendingError().find("camera"), std::string::npos);
  getRawDataEx(device_, raw_, 0);
  EXPECT_EQ(isError(), 0);
  executeProcessing(processing_, raw_);
  EXPECT_NE(pendingError().find("output"), std::string::npos);
  stopMeasurement(device_);
  stopMeasurement(device_);
  EXPECT_EQ(isError(), 0);
  EXPECT_EQ(getDevicePropertyInt(device_, 99), 0);
  EXPECT_NE(pendingError(), "");
  EXPECT_EQ(getDevicePropertyFloat(device_, 0), 0.0);
  EXPECT_NE(pendingError(), "");
  EXPECT_EQ(getDataPropertyInt(data_, 4), 0);
  EXPECT_NE(pendingError(), "");
  EXPECT_EQ(getDataPropertyFloat(data_, 2), 0.0);
  EXPECT_NE(pendingError(), "");
}

TEST_F(DeviceApi, AnotherSpectrumLengthIsAnError) {
  const auto other = createSimulatedDevice(OCT_PHANTOM_MIRROR, 128, 7);
  startMeasurement(other, pattern_, 0);
  getRawDataEx(other, raw_, 0);
  setProcessedDataOutput(processing_, data_);
  executeProcessing(processing_, raw_);
  EXPECT_NE(pendingError().find("spectrum length"), std::string::npos);
  EXPECT_EQ(getDataPropertyInt(data_, 1), 0);
  clearSimulatedDevice(other);
}

TEST_F(DeviceApi, ClearedOutputIsAnError) {
  startMeasurement(device_, pattern_, 0);
  getRawDataEx(device_, raw_, 0);
  const auto temporary = createData();
  setProcessedDataOutput(processing_, temporary);
  clearData(temporary);
  executeProcessing(processing_, raw_);
  EXPECT_NE(pendingError().find("output"), std::string::npos);
}

TEST_F(DeviceApi, NullHandlesAreErrorsEverywhere) {
  const std::vector<std::pair<const char*, void (*)()>> calls{
      {"getDevicePropertyInt", [] { EXPECT_EQ(getDevicePropertyInt(nullptr, 0), 0); }},
      {"getDevicePropertyFloat", [] { EXPECT_EQ(getDevicePropertyFloat(nullptr, 1), 0.0); }},
      {"clearRawData", [] { clearRawData(nullptr); }},
      {"clearData", [] { clearData(nullptr); }},
      {"startMeasurement", [] { startMeasurement(nullptr, nullptr, 0); }},
      {"stopMeasurement", [] { stopMeasurement(nullptr); }},
      {"getRawDataEx", [] { getRawDataEx(nullptr, nullptr, 0); }},
      {"setProcessedDataOutput", [] { setProcessedDataOutput(nullptr, nullptr); }},
      {"executeProcessing", [] { executeProcessing(nullptr, nullptr); }},
      {"getDataPropertyInt", [] { EXPECT_EQ(getDataPropertyInt(nullptr, 1), 0); }},
      {"getDataPropertyFloat", [] { EXPECT_EQ(getDataPropertyFloat(nullptr, 3), 0.0); }},
      {"setDataRange", [] { setDataRange(nullptr, 1.0, 1.0, 1.0); }},
      {"getDataPtr", [] { EXPECT_EQ(getDataPtr(nullptr), nullptr); }},
      {"clearSimulatedDevice", [] { clearSimulatedDevice(nullptr); }},
      {"createSimulatedProcessing", [] { EXPECT_EQ(createSimulatedProcessing(nullptr), nullptr); }},
      {"clearSimulatedProcessing", [] { clearSimulatedProcessing(nullptr); }},
      {"createSimulatedScanPattern",
       [] { EXPECT_EQ(createSimulatedScanPattern(nullptr, 1, 1, 1.0, 1.0), nullptr); }},
      {"clearSimulatedScanPattern", [] { clearSimulatedScanPattern(nullptr); }},
  };
  for (const auto& [name, call] : calls) {
    call();
    EXPECT_EQ(pendingError().rfind(std::string(name) + ": Null handle", 0), 0u) << name;
  }
}

TEST_F(DeviceApi, ClearedAndForeignHandlesAreErrors) {
  const auto gone = createData();
  clearData(gone);
  const auto next = createData();
  EXPECT_NE(gone, next);
  clearData(gone);
  EXPECT_NE(pendingError().find("Invalid handle"), std::string::npos);
  EXPECT_EQ(getDataPropertyInt(next, 1), 0);
  EXPECT_EQ(isError(), 0);
  clearData(next);
  clearRawData(reinterpret_cast<RawDataHandle>(data_));
  EXPECT_NE(pendingError().find("raw data"), std::string::npos);
}

TEST_F(DeviceApi, InvalidCreationArgumentsAreErrors) {
  EXPECT_EQ(createSimulatedDevice(17, 2048, 1), nullptr);
  EXPECT_NE(pendingError().find("phantom"), std::string::npos);
  EXPECT_EQ(createSimulatedDevice(0, 63, 1), nullptr);
  EXPECT_NE(pendingError().find("spectrum length"), std::string::npos);
  EXPECT_EQ(createSimulatedScanPattern(device_, 0, 1, 1.0, 1.0), nullptr);
  EXPECT_NE(pendingError(), "");
  EXPECT_EQ(createSimulatedScanPattern(device_, 65536, 65536, 1.0, 1.0), nullptr);
  EXPECT_NE(pendingError(), "");
  EXPECT_EQ(createSimulatedScanPattern(device_, 1, 1, 0.0, 1.0), nullptr);
  EXPECT_NE(pendingError(), "");
  EXPECT_EQ(createSimulatedScanPattern(device_, 1, 1, 1.0, std::nan("")), nullptr);
  EXPECT_NE(pendingError(), "");
}

TEST_F(DeviceApi, FirstErrorIsKeptAndTextIsCutToFit) {
  clearData(nullptr);
  clearRawData(nullptr);
  EXPECT_NE(getError(nullptr, 100), 0);
  EXPECT_NE(isError(), 0);
  char tiny[6];
  std::memset(tiny, 'x', sizeof tiny);
  EXPECT_NE(getError(tiny, 5), 0);
  EXPECT_STREQ(tiny, "clea");
  EXPECT_EQ(tiny[5], 'x');
  EXPECT_EQ(isError(), 0);
  EXPECT_EQ(getError(tiny, 5), 0);
  EXPECT_STREQ(tiny, "");
}

TEST_F(DeviceApi, AnErrorOfOneThreadIsSeenByAnother) {
  std::thread([] { clearData(nullptr); }).join();
  EXPECT_NE(pendingError().find("clearData"), std::string::npos);
}

TEST_F(DeviceApi, ManyThreadsMayCreateAndClear) {
  std::atomic<int> lost = 0;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i)
    threads.emplace_back([&] {
      for (int n = 0; n < 500; ++n) {
        const auto data = createData();
        lost += data == nullptr;
        clearData(data);
      }
    });
  for (auto& thread : threads) thread.join();
  EXPECT_EQ(lost, 0);
}

TEST_F(DeviceApi, ProcessingAndPatternOutliveTheDevice) {
  const auto device = createSimulatedDevice(OCT_PHANTOM_MIRROR, 128, 7);
  const auto processing = createSimulatedProcessing(device);
  const auto pattern = createSimulatedScanPattern(device, 20, 1, 1.0, 1.0);
  startMeasurement(device, pattern, 0);
  getRawDataEx(device, raw_, 0);
  clearSimulatedDevice(device);
  setProcessedDataOutput(processing, data_);
  executeProcessing(processing, raw_);
  EXPECT_EQ(pendingError(), "");
  EXPECT_EQ(getDataPropertyInt(data_, 2), 20);
  clearSimulatedProcessing(processing);
  clearSimulatedScanPattern(pattern);
}

TEST_F(DeviceApi, HeadersServeCToo) { EXPECT_EQ(objectCountSeenFromC(), getSimulatedObjectCount()); }

}  // namespace
