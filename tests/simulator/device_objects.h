// Objects of the device library that are cleared with their owner, and what tests ask of them.
#pragma once

#include <array>
#include <functional>
#include <numbers>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "oct_device/oct_device.h"
#include "oct_simulator/oct_simulator.h"

namespace oct::simulator::test {

inline constexpr double degrees_per_radian = 180.0 / std::numbers::pi;

// Fetches the pending error of the device library, empty if there is none.
inline std::string pending_error() {
  char text[512] = "unchanged";
  return getError(text, sizeof text) ? text : "";
}

// A device with a processing and a scan pattern.
struct Scan {
  Scan(OCTDeviceHandle owned_device, int a_scans, int b_scans, double width_mm, double length_mm)
      : device(owned_device),
        processing(createSimulatedProcessing(device)),
        pattern(createSimulatedScanPattern(device, a_scans, b_scans, width_mm, length_mm)) {}
  ~Scan() {
    clearSimulatedScanPattern(pattern);
    clearSimulatedProcessing(processing);
    clearSimulatedDevice(device);
  }
  Scan(const Scan&) = delete;
  Scan& operator=(const Scan&) = delete;

  const OCTDeviceHandle device;
  const ProcessingHandle processing;
  const ScanPatternHandle pattern;
};

// Owns a handle.
template <auto Create, auto Clear>
class Owned {
 public:
  Owned() : handle_(Create()) {}
  ~Owned() { Clear(handle_); }
  Owned(const Owned&) = delete;
  Owned& operator=(const Owned&) = delete;
  operator decltype(Create())() const { return handle_; }

 private:
  const decltype(Create()) handle_;
};
using OwnedRawData = Owned<createRawData, clearRawData>;
using OwnedData = Owned<createData, clearData>;
using OwnedComplexData = Owned<createComplexData, clearComplexData>;

using Sizes = std::array<int, 3>;
using Ranges = std::array<double, 3>;

// By their numbers, which clients rely on.
inline Sizes sizes_of(DataHandle data) {
  return {getDataPropertyInt(data, 1), getDataPropertyInt(data, 2), getDataPropertyInt(data, 3)};
}

inline Ranges ranges_of(DataHandle data) {
  return {getDataPropertyFloat(data, 3), getDataPropertyFloat(data, 4), getDataPropertyFloat(data, 5)};
}

inline std::vector<float> samples_of(DataHandle data) {
  const float* const samples = getDataPtr(data);
  const auto bytes = static_cast<std::size_t>(getDataPropertyInt(data, OCT_DATA_BYTE_COUNT));
  return {samples, samples + bytes / sizeof(float)};
}

// Calls that fail, and words of their errors.
inline void expect_errors(const std::vector<std::pair<std::function<void()>, std::string>>& calls) {
  for (std::size_t i = 0; i < calls.size(); ++i) {
    SCOPED_TRACE(i);
    EXPECT_EQ(isError(), 0) << "before";
    calls[i].first();
    const std::string error = pending_error();
    EXPECT_NE(error, "");
    EXPECT_NE(error.find(calls[i].second), std::string::npos) << error;
  }
}

// Every test ends without an error that nobody has fetched and without objects.
class DeviceObjectsTest : public testing::Test {
 protected:
  DeviceObjectsTest() { pending_error(); }
  ~DeviceObjectsTest() override {
    EXPECT_EQ(pending_error(), "");
    EXPECT_EQ(getSimulatedObjectCount(), 0);
  }
};

}  // namespace oct::simulator::test
