// Recordings in place of a phantom.

#include <algorithm>
#include <limits>
#include <numeric>
#include <optional>

#include "simulator/device_objects.h"

namespace oct::simulator::test {
namespace {

constexpr Sizes recorded_sizes{6, 5, 4};
constexpr int samples_per_volume = 6 * 5 * 4;

// Samples that tell volume and place.
std::vector<float> numbered(int volumes, int first_volume = 0) {
  std::vector<float> samples(static_cast<std::size_t>(volumes * samples_per_volume));
  std::iota(samples.begin(), samples.end(), static_cast<float>(first_volume * samples_per_volume));
  return samples;
}

class Playback : public DeviceObjectsTest {
 protected:
  void open(const std::vector<float>& samples, int volumes = 1, double noise = 0.0, unsigned seed = 1) {
    const auto [depth, a_scans, b_scans] = recorded_sizes;
    scan_.emplace(
        createSimulatedPlayback(samples.data(), depth, a_scans, b_scans, volumes, 2.5, 3.0, 4.0, noise, seed),
        100, 100, 1.0, 1.0);
    setProcessedDataOutput(scan_->processing, data_);
    startMeasurement(scan_->device, scan_->pattern, 0);
    ASSERT_EQ(pending_error(), "");
  }

  std::vector<float> processed(RawDataHandle raw) {
    executeProcessing(scan_->processing, raw);
    EXPECT_EQ(pending_error(), "");
    return samples_of(data_);
  }
  std::vector<float> next() {
    getRawDataEx(scan_->device, raw_, 0);
    return processed(raw_);
  }

  std::optional<Scan> scan_;
  const OwnedRawData raw_;
  const OwnedData data_;
};

TEST_F(Playback, GivesTheRecordedVolumesInTheirOwnSizeInTurn) {
  auto samples = numbered(3);
  open(samples, 3);
  EXPECT_EQ(getDevicePropertyInt(scan_->device, OCT_DEVICE_SPECTRUM_LENGTH), 2 * recorded_sizes[0]);
  EXPECT_EQ(getDevicePropertyFloat(scan_->device, OCT_DEVICE_DEPTH_RANGE), 2.5);
  samples.assign(samples.size(), -1.0F);  // neither this nor what is done to the output reaches the recording
  for (int i = 0; i < 7; ++i) {
    EXPECT_EQ(next(), numbered(1, i % 3));
    getDataPtr(data_)[7] = -1.0F;
  }
  EXPECT_EQ(sizes_of(data_), recorded_sizes);
  EXPECT_EQ(ranges_of(data_), (Ranges{2.5, 3.0, 4.0}));
  const double reference = getRelativeReferenceIntensity(scan_->device, scan_->processing);
  EXPECT_GT(reference, 0.0);
  EXPECT_LT(reference, 1.0);
  // Raw data that was fetched keeps its volume, whatever the device has measured since.
  const OwnedRawData later;
  getRawDataEx(scan_->device, raw_, 0);
  getRawDataEx(scan_->device, later, 0);
  EXPECT_EQ(processed(raw_), numbered(1, 1));
  EXPECT_EQ(processed(later), numbered(1, 2));
}

// The samples tell which volume came, however long the calls took.
TEST_F(Playback, CountsWhatPacingLostUntilTheNextStart) {
  constexpr int volumes = 500;
  open(numbered(volumes), volumes);
  const auto shown = [&] { return static_cast<int>(next()[0]) / samples_per_volume; };
  for (int i = 0; i < 3; ++i) EXPECT_EQ(shown(), i);
  EXPECT_EQ(getLostVolumes(scan_->device), 0) << "without pacing";
  stopMeasurement(scan_->device);
  setSimulatedScanRate(scan_->device, 100.0 * 5 * 4, OCT_PACING_REAL_TIME);
  startMeasurement(scan_->device, scan_->pattern, 0);
  delaySimulatedCall("getRawDataEx", 2, 50);
  for (int fetched = 1; fetched <= 3; ++fetched) {
    const int since_start = shown() - 3;
    EXPECT_EQ(getLostVolumes(scan_->device), since_start + 1 - fetched);
  }
  EXPECT_GE(getLostVolumes(scan_->device), 3) << "during the delay";
  stopMeasurement(scan_->device);
  EXPECT_GE(getLostVolumes(scan_->device), 3);
  startMeasurement(scan_->device, scan_->pattern, 0);
  EXPECT_EQ(getLostVolumes(scan_->device), 0);
  setSimulatedScanPattern(scan_->device, scan_->pattern);
  next();
  EXPECT_EQ(sizes_of(data_), recorded_sizes) << "whatever the pattern says";
  releaseSimulatedCalls();
}

TEST_F(Playback, NoiseIsThatOfTheSeed) {
  std::vector<std::vector<float>> seen{numbered(1)};
  for (const unsigned seed : {7, 8}) {
    open(numbered(1), 1, 2.0, seed);
    seen.push_back(next());
    EXPECT_EQ(std::ranges::count(seen, seen.back()), 1) << seed;
  }
}

// The analog input of a device that moves shows other spots; of a recording it must not.
TEST_F(Playback, HasAnalogInputButNoComplexFieldAndDoesNotMove) {
  std::vector<float> resting;
  for (const int motion : {OCT_MOTION_NONE, OCT_MOTION_DRIFT}) {
    open(numbered(1));
    setSimulatedMotion(scan_->device, motion, 1.0, 0.001);
    getRawDataEx(scan_->device, raw_, 0);
    getAnalogInputData(scan_->device, data_);
    EXPECT_EQ(sizes_of(data_), (Sizes{2, recorded_sizes[1], recorded_sizes[2]}));
    if (motion == OCT_MOTION_NONE) resting = samples_of(data_);
    EXPECT_EQ(samples_of(data_), resting);
    EXPECT_EQ(next(), numbered(1));
  }
  const OwnedComplexData field;
  setComplexDataOutput(scan_->processing, field);
  expect_errors({{[&] { executeProcessing(scan_->processing, raw_); }, "no complex field"}});
}

// Raw data that held a recording takes camera readings, and the other way round.
TEST_F(Playback, SharesRawDataWithAPhantom) {
  open(numbered(1));
  EXPECT_EQ(next(), numbered(1));
  const Scan mirror(createSimulatedDevice(OCT_PHANTOM_MIRROR, 64, 1), 3, 2, 1.0, 1.0);
  startMeasurement(mirror.device, mirror.pattern, 0);
  setProcessedDataOutput(mirror.processing, data_);
  getRawDataEx(mirror.device, raw_, 0);
  executeProcessing(mirror.processing, raw_);
  EXPECT_EQ(sizes_of(data_), (Sizes{32, 3, 2}));
  EXPECT_NE(samples_of(data_)[1], numbered(1)[1]) << "the mirror, not the recording";
  expect_errors({{[&] { executeProcessing(scan_->processing, raw_); }, "another spectrum length"}});
  EXPECT_EQ(next(), numbered(1));
}

TEST_F(Playback, RefusesWhatItCannotPlay) {
  const std::vector<float> samples = numbered(1);
  std::vector<float> infinite = samples;
  infinite.back() = std::numeric_limits<float>::infinity();
  const auto play = [](const float* from, const Sizes& sizes, int volumes = 1, double noise = 0.0,
                       const Ranges& ranges = {1.0, 1.0, 1.0}) {
    return [=] {
      EXPECT_FALSE(createSimulatedPlayback(from, sizes[0], sizes[1], sizes[2], volumes, ranges[0], ranges[1],
                                           ranges[2], noise, 1));
    };
  };
  constexpr int huge = std::numeric_limits<int>::max();
  constexpr double not_a_number = std::numeric_limits<double>::quiet_NaN();
  const float* const good = samples.data();
  const auto range = [&](const Ranges& ranges) { return play(good, recorded_sizes, 1, 0.0, ranges); };
  expect_errors({{play(nullptr, recorded_sizes), "needs samples"},
                 {play(good, {3, 1, 1}), "depth samples"},
                 {play(good, {65537, 1, 1}), "depth samples"},
                 {play(good, {6, 0, 4}), "at least one"},
                 {play(good, {6, 5, -1}), "at least one"},
                 {play(good, recorded_sizes, 0), "at least one"},
                 {play(good, {65536, huge, huge}, huge), "too large"},
                 {play(good, recorded_sizes, 1, -1.0), "noise"},
                 {play(good, recorded_sizes, 1, not_a_number), "noise"},
                 {play(infinite.data(), recorded_sizes), "finite"},
                 {range({0.0, 1.0, 1.0}), "above zero"},
                 {range({1.0, -1.0, 1.0}), "above zero"},
                 {range({1.0, 1.0, not_a_number}), "above zero"}});
}

}  // namespace
}  // namespace oct::simulator::test
