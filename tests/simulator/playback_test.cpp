// Recordings in place of a phantom.

#include <chrono>
#include <cmath>
#include <limits>
#include <optional>

#include "base/recording.h"
#include "device_objects.h"

namespace oct::simulator::test {
namespace {

constexpr int kVolumes = 3, kBScans = 4, kAScans = 5, kDepths = 6;
constexpr int kSamples = kBScans * kAScans * kDepths;

/// Samples that tell volume and place.
std::vector<float> numbered(int volumes, int firstVolume = 0) {
  std::vector<float> samples;
  for (int n = firstVolume * kSamples; n < (firstVolume + volumes) * kSamples; ++n)
    samples.push_back(static_cast<float>(n));
  return samples;
}

class Playback : public DeviceObjectsTest {
 protected:
  /// Starts to play so many volumes of numbered samples.
  void open(int volumes) { open(numbered(volumes), {kDepths, kAScans, kBScans}, volumes, 0.0, 1); }

  void open(const std::vector<float>& samples, const Sizes& sizes, int volumes, double noise, unsigned seed) {
    scan_.emplace(createSimulatedPlayback(samples.data(), sizes[0], sizes[1], sizes[2], volumes, 2.5, 3.0,
                                          4.0, noise, seed),
                  100, 100, 1.0, 1.0);
    setProcessedDataOutput(scan_->processing, data_);
    startMeasurement(scan_->device, scan_->pattern, 0);
    ASSERT_EQ(pendingError(), "");
  }

  std::vector<float> next() {
    getRawDataEx(scan_->device, raw_, 0);
    executeProcessing(scan_->processing, raw_);
    EXPECT_EQ(pendingError(), "");
    return samplesOf(data_);
  }

  std::vector<float> nextAnalog() {
    getRawDataEx(scan_->device, raw_, 0);
    getAnalogInputData(scan_->device, data_);
    EXPECT_EQ(pendingError(), "");
    EXPECT_EQ(sizesOf(data_), (Sizes{2, kAScans, kBScans}));
    return samplesOf(data_);
  }

  /// The next volume is this one of the numbered ones.
  void expectNext(int volume) {
    EXPECT_EQ(next(), numbered(1, volume));
    EXPECT_EQ(sizesOf(data_), (Sizes{kDepths, kAScans, kBScans}));
  }

  std::optional<Scan> scan_;
  const OwnedRawData raw_;
  const OwnedData data_;
};

TEST_F(Playback, GivesTheRecordedVolumeInItsOwnSizeAgainAndAgain) {
  open(1);
  EXPECT_EQ(getDevicePropertyInt(scan_->device, OCT_DEVICE_SPECTRUM_LENGTH), 2 * kDepths);
  EXPECT_EQ(getDevicePropertyFloat(scan_->device, OCT_DEVICE_DEPTH_RANGE), 2.5);
  for (int i = 0; i < 3; ++i) expectNext(0);
  EXPECT_EQ(rangesOf(data_), (Ranges{2.5, 3.0, 4.0}));
  const double reference = getRelativeReferenceIntensity(scan_->device, scan_->processing);
  EXPECT_GT(reference, 0.0);
  EXPECT_LT(reference, 1.0);
}

TEST_F(Playback, GoesThroughSeveralVolumesInTurn) {
  open(kVolumes);
  for (int i = 0; i < 7; ++i) expectNext(i % kVolumes);
}

/// Neither what a client does to its own samples later nor what it does to the output reaches the recording.
TEST_F(Playback, KeepsACopy) {
  auto samples = numbered(1);
  open(samples, {kDepths, kAScans, kBScans}, 1, 0.0, 1);
  samples.assign(samples.size(), -1.0f);
  expectNext(0);
  getDataPtr(data_)[7] = -1.0f;
  expectNext(0);
}

/// Raw data that was fetched keeps its volume, whatever the device has measured since.
TEST_F(Playback, RawDataKeepsItsVolume) {
  open(kVolumes);
  const OwnedRawData later;
  getRawDataEx(scan_->device, raw_, 0);
  getRawDataEx(scan_->device, later, 0);
  executeProcessing(scan_->processing, raw_);
  EXPECT_EQ(samplesOf(data_), numbered(1, 0));
  executeProcessing(scan_->processing, later);
  EXPECT_EQ(samplesOf(data_), numbered(1, 1));
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
  constexpr Sizes kSizes{64, 80, 100};
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
  const Recording recording(level.data(), {100, 100, 100}, 1, 1.0, 3);
  const auto played = [&](int workers) {
    std::vector<float> samples(level.size());
    recording.play(5, samples, workers);
    return samples;
  };
  EXPECT_EQ(played(1), played(5));
}

TEST_F(Playback, HasAnalogInputAndNoComplexField) {
  open(1);
  nextAnalog();
  const OwnedComplexData field;
  setComplexDataOutput(scan_->processing, field);
  executeProcessing(scan_->processing, raw_);
  EXPECT_EQ(pendingError(), "executeProcessing: A recorded volume has no complex field. ");
}

/// The analog input of a device that moves shows other spots; of a recording it must not.
TEST_F(Playback, DoesNotMove) {
  open(1);
  const auto resting = nextAnalog();
  open(1);
  setSimulatedMotion(scan_->device, OCT_MOTION_DRIFT, 1.0, 0.001);
  EXPECT_EQ(nextAnalog(), resting);
  expectNext(0);
}

TEST_F(Playback, ArrivesAtTheGivenRate) {
  open(1);
  stopMeasurement(scan_->device);
  setSimulatedScanRate(scan_->device, 1000.0, OCT_PACING_REAL_TIME);  // 20 ms per volume
  const auto start = std::chrono::steady_clock::now();
  startMeasurement(scan_->device, scan_->pattern, 0);
  next();
  EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(20));
}

/// Raw data that held a recording takes camera readings, and the other way round.
TEST_F(Playback, SharesRawDataWithAPhantom) {
  open(1);
  expectNext(0);
  {
    const Scan mirror(createSimulatedDevice(OCT_PHANTOM_MIRROR, 64, 1), 3, 2, 1.0, 1.0);
    startMeasurement(mirror.device, mirror.pattern, 0);
    setProcessedDataOutput(mirror.processing, data_);
    getRawDataEx(mirror.device, raw_, 0);
    executeProcessing(mirror.processing, raw_);
    EXPECT_EQ(pendingError(), "");
    EXPECT_EQ(sizesOf(data_), (Sizes{32, 3, 2}));
    expectErrors({{[&] { executeProcessing(scan_->processing, raw_); }, "another spectrum length"}});
  }
  expectNext(0);
}

TEST_F(Playback, RefusesWhatItCannotPlay) {
  std::vector<float> samples = numbered(1);
  std::vector<float> infinite = samples;
  infinite.back() = std::numeric_limits<float>::infinity();
  struct Arguments {
    const float* samples;
    Sizes sizes{kDepths, kAScans, kBScans};
    int volumes = 1;
    Ranges millimetres{1.0, 1.0, 1.0};
    double noise = 0.0;
  };
  const auto play = [](const Arguments& a) {
    return [a] {
      EXPECT_EQ(createSimulatedPlayback(a.samples, a.sizes[0], a.sizes[1], a.sizes[2], a.volumes,
                                        a.millimetres[0], a.millimetres[1], a.millimetres[2], a.noise, 1),
                nullptr);
    };
  };
  constexpr int kHuge = std::numeric_limits<int>::max();
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  const float* const good = samples.data();
  expectErrors({{play({.samples = nullptr}), "needs samples"},
                {play({.samples = good, .sizes = {3, 1, 1}}), "depth samples"},
                {play({.samples = good, .sizes = {65537, 1, 1}}), "depth samples"},
                {play({.samples = good, .sizes = {kDepths, 0, kBScans}}), "at least one"},
                {play({.samples = good, .sizes = {kDepths, kAScans, -1}}), "at least one"},
                {play({.samples = good, .volumes = 0}), "at least one"},
                {play({.samples = good, .sizes = {65536, kHuge, kHuge}, .volumes = kHuge}), "too large"},
                {play({.samples = good, .noise = -1.0}), "noise"},
                {play({.samples = good, .noise = kNaN}), "noise"},
                {play({.samples = infinite.data()}), "finite"}});
  for (const double wrong : {0.0, -1.0, kNaN})
    for (const Ranges& ranges : {Ranges{wrong, 1.0, 1.0}, Ranges{1.0, wrong, 1.0}, Ranges{1.0, 1.0, wrong}})
      expectErrors({{play({.samples = good, .millimetres = ranges}), "above zero"}});
}

}  // namespace
}  // namespace oct::simulator::test
