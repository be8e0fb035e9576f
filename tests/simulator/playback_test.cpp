// Recordings in place of a phantom.

#include "oct_device/oct_device.h"
#include "oct_device/oct_simulator.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

std::string pendingError() {
  char text[512] = "unchanged";
  return getError(text, sizeof text) ? text : "";
}

/// A file that is gone afterwards. Its name is not ASCII.
class ArrayFile {
 public:
  ArrayFile(const std::string& description, const std::vector<float>& samples, int version = 1) {
    const auto* const test = testing::UnitTest::GetInstance()->current_test_info();
    path_ = std::filesystem::temp_directory_path() / (std::string("oct_playback_") + test->name());
    path_ += std::filesystem::path(u8"_\u00e4.npy");
    std::ofstream stream(path_, std::ios::binary);
    stream << "\x93NUMPY" << static_cast<char>(version) << '\0';
    const auto length = static_cast<std::uint32_t>(description.size());
    for (int byte = 0; byte < (version == 1 ? 2 : 4); ++byte)
      stream << static_cast<char>(length >> (8 * byte) & 255u);
    stream << description;
    stream.write(reinterpret_cast<const char*>(samples.data()),
                 static_cast<std::streamsize>(samples.size() * sizeof(float)));
  }
  ~ArrayFile() {
    std::error_code ignored;
    std::filesystem::remove(path_, ignored);
  }
  ArrayFile(const ArrayFile&) = delete;
  ArrayFile& operator=(const ArrayFile&) = delete;

  std::string name() const {
    const auto name = path_.u8string();
    return {name.begin(), name.end()};
  }

 private:
  std::filesystem::path path_;
};

std::string describe(const std::string& shape, const std::string& type = "<f4",
                     const std::string& order = "False") {
  return "{'descr': '" + type + "', 'fortran_order': " + order + ", 'shape': (" + shape + "), }\n";
}

/// The sample of a place, as a picture that nothing but the right order of axes gives back.
float sampleAt(int volume, int bScan, int aScan, int depth) {
  return static_cast<float>(1000 * volume + 100 * bScan + 10 * aScan + depth);
}

constexpr int kVolumes = 3, kBScans = 4, kDepths = 6, kAScans = 5;

std::vector<float> samplesOf(int volumes) {
  std::vector<float> samples;
  for (int volume = 0; volume < volumes; ++volume)
    for (int bScan = 0; bScan < kBScans; ++bScan)
      for (int depth = 0; depth < kDepths; ++depth)
        for (int aScan = 0; aScan < kAScans; ++aScan)
          samples.push_back(sampleAt(volume, bScan, aScan, depth));
  return samples;
}

class Playback : public testing::Test {
 protected:
  void SetUp() override {
    pendingError();
    raw_ = createRawData();
    data_ = createData();
  }

  void TearDown() override {
    clearData(data_);
    clearRawData(raw_);
    clearSimulatedScanPattern(pattern_);
    clearSimulatedProcessing(processing_);
    clearSimulatedDevice(device_);
    pendingError();
  }

  void open(const ArrayFile& file) {
    device_ = createSimulatedPlayback(file.name().c_str(), 2.5, 3.0, 4.0);
    processing_ = createSimulatedProcessing(device_);
    pattern_ = createSimulatedScanPattern(device_, 100, 100, 1.0, 1.0);
    setProcessedDataOutput(processing_, data_);
    ASSERT_EQ(pendingError(), "");
  }

  void expectNext(int volume) {
    getRawDataEx(device_, raw_, 0);
    executeProcessing(processing_, raw_);
    ASSERT_EQ(pendingError(), "");
    ASSERT_EQ(getDataPropertyInt(data_, 1), kDepths);
    ASSERT_EQ(getDataPropertyInt(data_, 2), kAScans);
    ASSERT_EQ(getDataPropertyInt(data_, 3), kBScans);
    const float* sample = getDataPtr(data_);
    for (int bScan = 0; bScan < kBScans; ++bScan)
      for (int aScan = 0; aScan < kAScans; ++aScan)
        for (int depth = 0; depth < kDepths; ++depth)
          ASSERT_EQ(*sample++, sampleAt(volume, bScan, aScan, depth))
              << bScan << ' ' << aScan << ' ' << depth;
  }

  OCTDeviceHandle device_ = nullptr;
  ProcessingHandle processing_ = nullptr;
  ScanPatternHandle pattern_ = nullptr;
  RawDataHandle raw_ = nullptr;
  DataHandle data_ = nullptr;
};

TEST_F(Playback, GivesTheRecordedVolumeInItsOwnSizeAgainAndAgain) {
  open(ArrayFile(describe("4, 6, 5"), samplesOf(1)));
  EXPECT_EQ(getDevicePropertyInt(device_, 0), 2 * kDepths);
  EXPECT_DOUBLE_EQ(getDevicePropertyFloat(device_, 1), 2.5);
  startMeasurement(device_, pattern_, 0);
  for (int i = 0; i < 3; ++i) expectNext(0);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 3), 2.5);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 4), 3.0);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, 5), 4.0);
  const double reference = getRelativeReferenceIntensity(device_, processing_);
  EXPECT_GT(reference, 0.0);
  EXPECT_LT(reference, 1.0);
}

TEST_F(Playback, GoesThroughSeveralVolumesInTurn) {
  open(ArrayFile(describe("3, 4, 6, 5"), samplesOf(kVolumes), 3));
  startMeasurement(device_, pattern_, 0);
  for (int i = 0; i < 7; ++i) expectNext(i % kVolumes);
}

/// What a client does to its data must not reach the recording.
TEST_F(Playback, IsNotChangedThroughTheOutput) {
  open(ArrayFile(describe("4, 6, 5"), samplesOf(1)));
  startMeasurement(device_, pattern_, 0);
  expectNext(0);
  getDataPtr(data_)[7] = -1.0f;
  expectNext(0);
}

TEST_F(Playback, HasAnalogInputAndNoComplexField) {
  open(ArrayFile(describe("4, 6, 5"), samplesOf(1)));
  startMeasurement(device_, pattern_, 0);
  getRawDataEx(device_, raw_, 0);
  getAnalogInputData(device_, data_);
  EXPECT_EQ(pendingError(), "");
  EXPECT_EQ(getDataPropertyInt(data_, 2), kAScans);
  EXPECT_EQ(getDataPropertyInt(data_, 3), kBScans);
  const ComplexDataHandle field = createComplexData();
  setComplexDataOutput(processing_, field);
  executeProcessing(processing_, raw_);
  EXPECT_EQ(pendingError(), "executeProcessing: A recorded volume has no complex field. ");
  clearComplexData(field);
}

/// Raw data that held a recording takes camera readings, and the other way round.
TEST_F(Playback, SharesRawDataWithAPhantom) {
  open(ArrayFile(describe("4, 6, 5"), samplesOf(1)));
  startMeasurement(device_, pattern_, 0);
  expectNext(0);
  const OCTDeviceHandle mirror = createSimulatedDevice(OCT_PHANTOM_MIRROR, 64, 1);
  const ProcessingHandle processing = createSimulatedProcessing(mirror);
  const ScanPatternHandle pattern = createSimulatedScanPattern(mirror, 3, 2, 1.0, 1.0);
  startMeasurement(mirror, pattern, 0);
  setProcessedDataOutput(processing, data_);
  getRawDataEx(mirror, raw_, 0);
  executeProcessing(processing, raw_);
  EXPECT_EQ(pendingError(), "");
  EXPECT_EQ(getDataPropertyInt(data_, 1), 32);
  EXPECT_EQ(getDataPropertyInt(data_, 2), 3);
  executeProcessing(processing_, raw_);
  EXPECT_NE(pendingError().find("another spectrum length"), std::string::npos);
  clearSimulatedScanPattern(pattern);
  clearSimulatedProcessing(processing);
  clearSimulatedDevice(mirror);
  expectNext(0);
}

TEST_F(Playback, RefusesWhatItCannotPlay) {
  const auto expectRefused = [](const ArrayFile& file, const std::string& reason) {
    EXPECT_EQ(createSimulatedPlayback(file.name().c_str(), 1.0, 1.0, 1.0), nullptr);
    const auto error = pendingError();
    EXPECT_NE(error.find(file.name()), std::string::npos) << error;
    EXPECT_NE(error.find(reason), std::string::npos) << error;
  };
  const auto samples = samplesOf(1);
  expectRefused(ArrayFile(describe("4, 6, 5", "<f8"), samples), "floats");
  expectRefused(ArrayFile(describe("4, 6, 5", "<f4", "True"), samples), "C order");
  expectRefused(ArrayFile(describe("24, 5"), samples), "axes");
  expectRefused(ArrayFile(describe("4, 0, 5"), samples), "empty");
  expectRefused(ArrayFile(describe("40, 3, 1"), samples), "too short");
  expectRefused(ArrayFile(describe("4, 6, 6"), samples), "ends before");
  expectRefused(ArrayFile(describe("65536, 65536, 65536, 65536"), samples), "ends before");
  expectRefused(ArrayFile(describe("99999999999999999999, 6, 5"), samples), "too long");
  expectRefused(ArrayFile("{}", samples), "floats");

  const ArrayFile good(describe("4, 6, 5"), samples);
  for (const double wrong : {0.0, -1.0})
    for (int extent = 0; extent < 3; ++extent) {
      EXPECT_EQ(createSimulatedPlayback(good.name().c_str(), extent == 0 ? wrong : 1.0,
                                        extent == 1 ? wrong : 1.0, extent == 2 ? wrong : 1.0),
                nullptr);
      EXPECT_NE(pendingError().find("above zero"), std::string::npos);
    }
  EXPECT_EQ(createSimulatedPlayback("/nowhere/at/all.npy", 1.0, 1.0, 1.0), nullptr);
  EXPECT_NE(pendingError().find("cannot be opened"), std::string::npos);
  EXPECT_EQ(createSimulatedPlayback(nullptr, 1.0, 1.0, 1.0), nullptr);
  EXPECT_NE(pendingError(), "");
}

}  // namespace
