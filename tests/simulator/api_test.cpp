// The C functions: results, layout, errors, balance of objects.

#include <atomic>
#include <cmath>
#include <cstring>
#include <thread>

#include "device_objects.h"

extern "C" int objectCountSeenFromC(void);

namespace oct::simulator::test {
namespace {

/// A mirror in front of a device with everything that is needed to see it.
class DeviceApi : public DeviceObjectsTest {
 protected:
  static constexpr int kAScans = 24;
  static constexpr int kBScans = 3;

  void measure() {
    startMeasurement(scan_.device, scan_.pattern, 0);
    setProcessedDataOutput(scan_.processing, data_);
    getRawDataEx(scan_.device, raw_, 0);
    executeProcessing(scan_.processing, raw_);
    stopMeasurement(scan_.device);
    ASSERT_EQ(pendingError(), "");
  }

  const Scan scan_{createSimulatedDevice(OCT_PHANTOM_MIRROR, 256, 7), kAScans, kBScans, 2.0, 1.5};
  const OwnedRawData raw_;
  const OwnedData data_;
};

TEST_F(DeviceApi, EmptyDataHasNoSizeAndIsNoError) {
  EXPECT_EQ(sizesOf(data_), Sizes{});
  EXPECT_EQ(getDataPropertyInt(data_, OCT_DATA_BYTE_COUNT), 0);
  EXPECT_EQ(rangesOf(data_), Ranges{});
  EXPECT_EQ(getDataPtr(data_), nullptr);
  EXPECT_EQ(isError(), 0);
}

/// By their numbers, which clients rely on.
TEST_F(DeviceApi, SizesAndRangesFollowDeviceAndPattern) {
  EXPECT_EQ(getDevicePropertyInt(scan_.device, 0), 256);
  EXPECT_EQ(getDevicePropertyFloat(scan_.device, 1), 3.6);
  measure();
  int number = 1;
  for (const int size : {128, kAScans, kBScans}) EXPECT_EQ(getDataPropertyInt(data_, number++), size);
  EXPECT_EQ(getDataPropertyInt(data_, 5), 128 * kAScans * kBScans * 4);
  number = 3;
  for (const double range : {3.6, 2.0, 1.5}) EXPECT_EQ(getDataPropertyFloat(data_, number++), range);
}

TEST_F(DeviceApi, DepthIsTheFastestAxis) {
  measure();
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
  EXPECT_EQ(rangesOf(data_), (Ranges{2.5, 1.0, 0.5}));
  executeProcessing(scan_.processing, raw_);
  EXPECT_EQ(rangesOf(data_), (Ranges{3.6, 2.0, 1.5}));
  expectErrors({{[&] { setDataRange(data_, std::nan(""), 1.0, 1.0); }, "setDataRange"}});
  EXPECT_EQ(rangesOf(data_), (Ranges{3.6, 2.0, 1.5}));
}

TEST_F(DeviceApi, WrongOrderAndWrongArgumentsAreErrors) {
  const auto process = [&] { executeProcessing(scan_.processing, raw_); };
  const auto start = [&] { startMeasurement(scan_.device, scan_.pattern, 0); };
  const OCTDeviceHandle device = scan_.device;
  expectErrors({{[&] { getRawDataEx(device, raw_, 0); }, "No measurement"},
                {process, ""},
                {[&] { startMeasurement(device, scan_.pattern, 1); }, "mode"}});
  start();
  expectErrors({{start, "already running"}, {[&] { getRawDataEx(device, raw_, 1); }, "camera"}});
  getRawDataEx(device, raw_, 0);
  expectErrors({{process, "output"}});
  stopMeasurement(device);
  stopMeasurement(device);
  expectErrors({{[&] { EXPECT_EQ(getDevicePropertyInt(device, 99), 0); }, ""},
                {[&] { EXPECT_EQ(getDevicePropertyFloat(device, 0), 0.0); }, ""},
                {[&] { EXPECT_EQ(getDataPropertyInt(data_, 4), 0); }, ""},
                {[&] { EXPECT_EQ(getDataPropertyFloat(data_, 2), 0.0); }, ""}});
}

TEST_F(DeviceApi, AnotherSpectrumLengthIsAnError) {
  const Scan other(createSimulatedDevice(OCT_PHANTOM_MIRROR, 128, 7), 1, 1, 1.0, 1.0);
  startMeasurement(other.device, scan_.pattern, 0);
  getRawDataEx(other.device, raw_, 0);
  setProcessedDataOutput(scan_.processing, data_);
  expectErrors({{[&] { executeProcessing(scan_.processing, raw_); }, "spectrum length"}});
  EXPECT_EQ(sizesOf(data_), Sizes{});
}

TEST_F(DeviceApi, ClearedOutputIsAnError) {
  startMeasurement(scan_.device, scan_.pattern, 0);
  getRawDataEx(scan_.device, raw_, 0);
  const auto temporary = createData();
  setProcessedDataOutput(scan_.processing, temporary);
  clearData(temporary);
  expectErrors({{[&] { executeProcessing(scan_.processing, raw_); }, "output"}});
}

TEST_F(DeviceApi, ClearedAndForeignHandlesAreErrors) {
  const auto gone = createData();
  clearData(gone);
  const OwnedData next;
  EXPECT_NE(gone, next);
  expectErrors({{[&] { clearData(gone); }, "Invalid handle"}});
  EXPECT_EQ(getDataPropertyInt(next, 1), 0);
  DataHandle const data = data_;
  expectErrors({{[&] { clearRawData(reinterpret_cast<RawDataHandle>(data)); }, "raw data"}});
}

TEST_F(DeviceApi, InvalidCreationArgumentsAreErrors) {
  const auto device = [](int phantom, int length) {
    return [=] { EXPECT_EQ(createSimulatedDevice(phantom, length, 1), nullptr); };
  };
  const auto pattern = [&](int aScans, int bScans, double width, double length) {
    return [=, this] {
      EXPECT_EQ(createSimulatedScanPattern(scan_.device, aScans, bScans, width, length), nullptr);
    };
  };
  expectErrors({{device(17, 2048), "phantom"},
                {device(0, 63), "spectrum length"},
                {pattern(0, 1, 1.0, 1.0), ""},
                {pattern(65536, 65536, 1.0, 1.0), ""},
                {pattern(1, 1, 0.0, 1.0), ""},
                {pattern(1, 1, 1.0, std::nan("")), ""}});
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
  expectErrors({{[] { std::thread([] { clearData(nullptr); }).join(); }, "clearData"}});
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

TEST_F(DeviceApi, HeadersServeCToo) {
  EXPECT_EQ(getSimulatedObjectCount(), 5);
  EXPECT_EQ(objectCountSeenFromC(), 5);
}

}  // namespace
}  // namespace oct::simulator::test
