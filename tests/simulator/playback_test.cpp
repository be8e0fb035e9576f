// Recordings in place of a phantom.

#include "oct_device/oct_device.h"
#include "oct_device/oct_simulator.h"
#include "recording.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace {

std::string pendingError() {
  char text[512] = "unchanged";
  return getError(text, sizeof text) ? text : "";
}

constexpr int kVolumes = 3, kBScans = 4, kAScans = 5, kDepths = 6;
constexpr int kSamples = kBScans * kAScans * kDepths;

/// Samples that tell volume and place.
std::vector<float> samplesOf(int volumes) {
  std::vector<float> samples;
  for (int n = 0; n < volumes * kSamples; ++n) samples.push_back(static_cast<float>(n));
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
    EXPECT_EQ(pendingError(), "");
    EXPECT_EQ(getSimulatedObjectCount(), 0);
  }

  void open(const std::vector<float>& samples, int volumes, double noise = 0.0, unsigned seed = 1) {
    open(samples, {kDepths, kAScans, kBScans}, volumes, noise, seed);
  }

  void open(const std::vector<float>& samples, std::array<int, 3> sizes, int volumes, double noise,
            unsigned seed) {
    if (device_) {
      clearSimulatedScanPattern(pattern_);
      clearSimulatedProcessing(processing_);
      clearSimulatedDevice(device_);
    }
    device_ = createSimulatedPlayback(samples.data(), sizes[0], sizes[1], sizes[2], volumes, 2.5, 3.0, 4.0,
                                      noise, seed);
    processing_ = createSimulatedProcessing(device_);
    pattern_ = createSimulatedScanPattern(device_, 100, 100, 1.0, 1.0);
    setProcessedDataOutput(processing_, data_);
    startMeasurement(device_, pattern_, 0);
    ASSERT_EQ(pendingError(), "");
  }

  std::vector<float> next() {
    getRawDataEx(device_, raw_, 0);
    executeProcessing(processing_, raw_);
    EXPECT_EQ(pendingError(), "");
    const float* const samples = getDataPtr(data_);
    const auto bytes = static_cast<std::size_t>(getDataPropertyInt(data_, OCT_DATA_BYTE_COUNT));
    return {samples, samples + bytes / sizeof(float)};
  }

  /// The next volume is this one of those that samplesOf() gives.
  void expectNext(int volume) {
    const auto samples = next();
    ASSERT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_1), kDepths);
    ASSERT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_2), kAScans);
    ASSERT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_3), kBScans);
    ASSERT_EQ(samples.size(), std::size_t{kSamples});
    for (int n = 0; n < kSamples; ++n)
      ASSERT_EQ(samples[static_cast<std::size_t>(n)], static_cast<float>(volume * kSamples + n)) << n;
  }

  OCTDeviceHandle device_ = nullptr;
  ProcessingHandle processing_ = nullptr;
  ScanPatternHandle pattern_ = nullptr;
  RawDataHandle raw_ = nullptr;
  DataHandle data_ = nullptr;
};

TEST_F(Playback, GivesTheRecordedVolumeInItsOwnSizeAgainAndAgain) {
  open(samplesOf(1), 1);
  EXPECT_EQ(getDevicePropertyInt(device_, OCT_DEVICE_SPECTRUM_LENGTH), 2 * kDepths);
  EXPECT_DOUBLE_EQ(getDevicePropertyFloat(device_, OCT_DEVICE_DEPTH_RANGE), 2.5);
  for (int i = 0; i < 3; ++i) expectNext(0);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, OCT_DATA_RANGE_1), 2.5);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, OCT_DATA_RANGE_2), 3.0);
  EXPECT_DOUBLE_EQ(getDataPropertyFloat(data_, OCT_DATA_RANGE_3), 4.0);
  const double reference = getRelativeReferenceIntensity(device_, processing_);
  EXPECT_GT(reference, 0.0);
  EXPECT_LT(reference, 1.0);
}

TEST_F(Playback, GoesThroughSeveralVolumesInTurn) {
  open(samplesOf(kVolumes), kVolumes);
  for (int i = 0; i < 7; ++i) expectNext(i % kVolumes);
}

/// Neither what a client does to its own samples later nor what it does to the output reaches the recording.
TEST_F(Playback, KeepsACopy) {
  auto samples = samplesOf(1);
  open(samples, 1);
  samples.assign(samples.size(), -1.0f);
  expectNext(0);
  getDataPtr(data_)[7] = -1.0f;
  expectNext(0);
}

/// Raw data that was fetched keeps its volume, whatever the device has measured since.
TEST_F(Playback, RawDataKeepsItsVolume) {
  open(samplesOf(kVolumes), kVolumes);
  getRawDataEx(device_, raw_, 0);
  const RawDataHandle later = createRawData();
  getRawDataEx(device_, later, 0);
  executeProcessing(processing_, raw_);
  EXPECT_EQ(getDataPtr(data_)[1], 1.0f);
  executeProcessing(processing_, later);
  EXPECT_EQ(getDataPtr(data_)[1], float{kSamples + 1});
  clearRawData(later);
  expectNext(2);
}

struct Moments {
  double mean = 0.0;
  double deviation = 0.0;
};

Moments momentsOf(const std::vector<float>& samples, float level) {
  double sum = 0.0, squares = 0.0;
  for (const float sample : samples) {
    sum += double{sample} - level;
    squares += (double{sample} - level) * (double{sample} - level);
  }
  const auto count = static_cast<double>(samples.size());
  return {sum / count, std::sqrt(squares / count - sum / count * sum / count)};
}

TEST_F(Playback, NoiseHasTheGivenStrengthAndDiffersFromVolumeToVolume) {
  constexpr std::array kSizes{64, 80, 100};
  const std::vector<float> level(64 * 80 * 100, 30.0f);
  open(level, kSizes, 1, 2.0, 7);
  const auto first = next();
  const auto second = next();
  // Half a million deviates out of a table of 16384, whose own mean is off by 2 / 128 at one sigma.
  EXPECT_NEAR(momentsOf(first, 30.0f).mean, 0.0, 0.06);
  EXPECT_NEAR(momentsOf(first, 30.0f).deviation, 2.0, 0.05);
  std::vector<float> difference(first.size());
  for (std::size_t n = 0; n < first.size(); ++n) difference[n] = second[n] - first[n];
  EXPECT_NEAR(momentsOf(difference, 0.0f).deviation, 2.0 * std::sqrt(2.0), 0.06);

  open(level, kSizes, 1, 2.0, 7);
  EXPECT_EQ(next(), first);
  EXPECT_EQ(next(), second);
  open(level, kSizes, 1, 2.0, 8);
  EXPECT_NE(next(), first);
}

/// Neighbouring A-scans and B-scans must not repeat each other's noise, which an average would not remove.
TEST_F(Playback, NoiseOfNeighboursIsIndependent) {
  constexpr int kDepth = 256;
  open(std::vector<float>(kDepth * 50 * 40), {kDepth, 50, 40}, 1, 1.0, 1);
  const auto samples = next();
  for (const std::size_t distance : {std::size_t{1}, std::size_t{kDepth}, std::size_t{kDepth * 50}}) {
    double product = 0.0;
    for (std::size_t n = 0; n + distance < samples.size(); ++n)
      product += double{samples[n]} * samples[n + distance];
    EXPECT_NEAR(product / static_cast<double>(samples.size() - distance), 0.0, 0.02) << distance;
  }
}

TEST(Recording, VolumesDoNotDependOnTheNumberOfThreads) {
  const std::vector<float> level(100 * 100 * 100, 1.0f);
  const oct::simulator::Recording recording(level.data(), {100, 100, 100}, 1, 1.0, 3);
  const auto played = [&](int workers) {
    std::vector<float> samples(level.size());
    recording.play(5, samples, workers);
    return samples;
  };
  EXPECT_EQ(played(1), played(5));
}

TEST_F(Playback, HasAnalogInputAndNoComplexField) {
  open(samplesOf(1), 1);
  getRawDataEx(device_, raw_, 0);
  getAnalogInputData(device_, data_);
  EXPECT_EQ(pendingError(), "");
  EXPECT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_2), kAScans);
  EXPECT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_3), kBScans);
  const ComplexDataHandle field = createComplexData();
  setComplexDataOutput(processing_, field);
  executeProcessing(processing_, raw_);
  EXPECT_EQ(pendingError(), "executeProcessing: A recorded volume has no complex field. ");
  clearComplexData(field);
}

/// The analog input of a device that moves shows other spots; of a recording it must not.
TEST_F(Playback, DoesNotMove) {
  const auto analogOfFirst = [&] {
    open(samplesOf(1), 1);
    getRawDataEx(device_, raw_, 0);
    getAnalogInputData(device_, data_);
    const float* const volts = getDataPtr(data_);
    return std::vector<float>(volts, volts + 2 * kAScans * kBScans);
  };
  const auto resting = analogOfFirst();
  open(samplesOf(1), 1);
  setSimulatedMotion(device_, OCT_MOTION_DRIFT, 1.0, 0.001);
  getRawDataEx(device_, raw_, 0);
  getAnalogInputData(device_, data_);
  EXPECT_EQ(pendingError(), "");
  const float* const volts = getDataPtr(data_);
  EXPECT_EQ(std::vector<float>(volts, volts + 2 * kAScans * kBScans), resting);
  expectNext(0);
}

TEST_F(Playback, ArrivesAtTheGivenRate) {
  open(samplesOf(kVolumes), kVolumes);
  stopMeasurement(device_);
  setSimulatedScanRate(device_, 1000.0, OCT_PACING_REAL_TIME);  // 20 ms per volume
  const auto start = std::chrono::steady_clock::now();
  startMeasurement(device_, pattern_, 0);
  next();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
}

/// Raw data that held a recording takes camera readings, and the other way round.
TEST_F(Playback, SharesRawDataWithAPhantom) {
  open(samplesOf(1), 1);
  expectNext(0);
  const OCTDeviceHandle mirror = createSimulatedDevice(OCT_PHANTOM_MIRROR, 64, 1);
  const ProcessingHandle processing = createSimulatedProcessing(mirror);
  const ScanPatternHandle pattern = createSimulatedScanPattern(mirror, 3, 2, 1.0, 1.0);
  startMeasurement(mirror, pattern, 0);
  setProcessedDataOutput(processing, data_);
  getRawDataEx(mirror, raw_, 0);
  executeProcessing(processing, raw_);
  EXPECT_EQ(pendingError(), "");
  EXPECT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_1), 32);
  EXPECT_EQ(getDataPropertyInt(data_, OCT_DATA_SIZE_2), 3);
  executeProcessing(processing_, raw_);
  EXPECT_NE(pendingError().find("another spectrum length"), std::string::npos);
  clearSimulatedScanPattern(pattern);
  clearSimulatedProcessing(processing);
  clearSimulatedDevice(mirror);
  expectNext(0);
}

TEST_F(Playback, RefusesWhatItCannotPlay) {
  open(samplesOf(1), 1);
  auto samples = samplesOf(1);
  struct Arguments {
    const float* samples;
    std::array<int, 3> sizes{kDepths, kAScans, kBScans};
    int volumes = 1;
    std::array<double, 3> millimetres{1.0, 1.0, 1.0};
    double noise = 0.0;
  };
  const auto expectRefused = [](const Arguments& a, const std::string& reason) {
    EXPECT_EQ(createSimulatedPlayback(a.samples, a.sizes[0], a.sizes[1], a.sizes[2], a.volumes,
                                      a.millimetres[0], a.millimetres[1], a.millimetres[2], a.noise, 1),
              nullptr);
    EXPECT_NE(pendingError().find(reason), std::string::npos) << reason;
  };
  constexpr int kHuge = std::numeric_limits<int>::max();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const float* const good = samples.data();
  expectRefused({.samples = nullptr}, "needs samples");
  expectRefused({.samples = good, .sizes = {3, 1, 1}}, "depth samples");
  expectRefused({.samples = good, .sizes = {65537, 1, 1}}, "depth samples");
  expectRefused({.samples = good, .sizes = {kDepths, 0, kBScans}}, "at least one");
  expectRefused({.samples = good, .sizes = {kDepths, kAScans, -1}}, "at least one");
  expectRefused({.samples = good, .volumes = 0}, "at least one");
  expectRefused({.samples = good, .sizes = {65536, kHuge, kHuge}, .volumes = kHuge}, "too large");
  for (const double wrong : {0.0, -1.0, kNaN}) {
    expectRefused({.samples = good, .millimetres = {wrong, 1.0, 1.0}}, "above zero");
    expectRefused({.samples = good, .millimetres = {1.0, wrong, 1.0}}, "above zero");
    expectRefused({.samples = good, .millimetres = {1.0, 1.0, wrong}}, "above zero");
  }
  expectRefused({.samples = good, .noise = -1.0}, "noise");
  expectRefused({.samples = good, .noise = kNaN}, "noise");
  samples.back() = std::numeric_limits<float>::infinity();
  expectRefused({.samples = good}, "finite");
}

}  // namespace
