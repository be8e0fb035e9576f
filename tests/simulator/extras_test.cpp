// Analog input, surface, reference intensity.

#include "measurement.h"

#include "phantoms/finger_pad.h"
#include "phantoms/mirror.h"
#include "processing/surface.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numbers>

namespace oct::simulator::test {
namespace {

TEST(Surface, OfTheFingerPadIsFoundWithinAFewSamples) {
  const FingerPad finger(3);
  Device device(standardSpectrometer(), std::make_shared<FingerPad>(3), 3);
  const ScanPattern pattern(150, 4, 4.0, 3.0);
  const auto volume = measure(device, pattern);
  Data surface;
  findSurface(volume.data(), surface);
  ASSERT_EQ(surface.sizes(), (std::array{150, 4, 1}));
  EXPECT_EQ(surface.rangesMm(), (std::array{4.0, 3.0, 0.0}));
  const double cellMm = volume.cellMm();
  int beside = 0, off = 0;
  double sum = 0.0;
  for (int bScan = 0; bScan < 4; ++bScan)
    for (int aScan = 0; aScan < 150; ++aScan) {
      const double truth = finger.surfaceMm(pattern.xMm(aScan), pattern.yMm(bScan));
      const double error = (surface.samples()[aScan + 150 * bScan] - truth) / cellMm;
      beside += std::abs(error) > 2.0;
      off += std::abs(error) > 4.0;
      sum += error;
    }
  // Where the surface mirrors the light past the device, the first bright speckle below it is found, or what
  // the background removal has left of a bright reflection nearby just above it.
  EXPECT_LE(beside, 600 / 6);
  EXPECT_LE(off, 600 / 15);
  EXPECT_NEAR(sum / 600.0, 0.0, 1.0);
}

TEST(Surface, OfAMirrorIsItsPeakInSpiteOfSideLobes) {
  Device device(standardSpectrometer(), std::make_shared<Mirror>(1.0, 0.02, 0.2f), 3);
  const ScanPattern pattern(64, 1, 1.0, 1.0);
  const auto volume = measure(device, pattern);
  Data surface;
  findSurface(volume.data(), surface);
  const double cellMm = volume.cellMm();
  for (int aScan = 0; aScan < 64; ++aScan)
    EXPECT_NEAR(surface.samples()[aScan], 1.0 + 0.02 * pattern.xMm(aScan), 0.6 * cellMm) << aScan;
}

TEST(Surface, CountsWithTheRangeOfTheVolumeAndIsTheWholeRangeWhereThereIsNone) {
  Device device(standardSpectrometer(), std::make_shared<UniformPhantom>(0.0f), 3);
  const auto volume = measure(device, ScanPattern(40, 2, 1.0, 1.0));
  for (int i = 0; i < 30; ++i) volume.data().samples()[1024 * 7 + 512 + i] += 60.0f;
  volume.data().setRanges({2.0, 1.0, 1.0});
  Data surface;
  findSurface(volume.data(), surface, 1);
  for (int index = 0; index < 80; ++index)
    EXPECT_NEAR(surface.samples()[index], index == 7 ? 1.0 : 2.0, index == 7 ? 0.03 : 0.0) << index;
  Data again;
  findSurface(volume.data(), again, 5);
  EXPECT_EQ(surface.samples(), again.samples());
}

TEST(Surface, RefusesEmptyAndIdenticalData) {
  Data empty, surface;
  EXPECT_THROW(findSurface(empty, surface), std::invalid_argument);
  Data volume;
  volume.resize({4, 2, 2}, {1.0, 1.0, 1.0});
  EXPECT_THROW(findSurface(volume, volume), std::invalid_argument);
  findSurface(volume, surface);  // shorter than what the search skips
  EXPECT_EQ(surface.samples(), std::vector<float>(4, 1.0f));
}

class AnalogSignals : public testing::Test {
 protected:
  /// Acquires one volume and reads its analog input.
  void next(Data& data) {
    device_.acquire(raw_, 0);
    device_.readAnalogInput(data);
  }

  static double channel(Data& data, int number, int aScan) {
    return data.samples()[AnalogInput::kChannels * aScan + number];
  }

  Device device_{Spectrometer(64, 1300.0, 3.6), std::make_shared<Mirror>(1.0, 0.02, 0.1f), 3};
  RawData raw_;
};

TEST_F(AnalogSignals, HaveTwoChannelsPerAScanAtAFixedPlaceInMemory) {
  Data data;
  EXPECT_THROW(device_.readAnalogInput(data), std::logic_error);
  device_.start(ScanPattern(20, 6, 2.0, 2.0), 0);
  EXPECT_THROW(device_.readAnalogInput(data), std::logic_error);
  next(data);
  EXPECT_EQ(data.sizes(), (std::array{2, 20, 6}));
  const auto first = data.samples();
  const float* const place = data.samples().data();
  next(data);
  EXPECT_EQ(data.samples().data(), place);
  EXPECT_NE(data.samples(), first);
  const auto [least, most] = std::ranges::minmax(data.samples());
  EXPECT_GE(least, -0.011f);
  EXPECT_LE(most, 1.011f);
}

TEST_F(AnalogSignals, PulseBeatsByTheAScanRate) {
  device_.setPace({.aScansPerSecond = 1200.0});
  device_.start(ScanPattern(4000, 1, 2.0, 2.0), 0);
  Data data;
  next(data);
  // A beat takes 1000 A-scans: steep rises at 0, 1000, ... to the crest 150 A-scans later.
  for (int beat = 0; beat < 4; ++beat) {
    EXPECT_NEAR(channel(data, 1, 1000 * beat + 75), 0.5, 0.02);
    EXPECT_NEAR(channel(data, 1, 1000 * beat + 150), 1.0, 0.02);
    EXPECT_NEAR(channel(data, 1, 1000 * beat + 400), std::exp(-1.0), 0.02);
  }
}

TEST_F(AnalogSignals, GlowMovesWithThePhantom) {
  constexpr double kAmplitude = 0.4;
  const ScanPattern pattern(100, 1, 2.0, 1.0);
  Device still(Spectrometer(64, 1300.0, 3.6), std::make_shared<Mirror>(1.0, 0.02, 0.1f), 3);
  Data rest;
  still.start(pattern, 0);
  still.acquire(raw_, 0);
  still.readAnalogInput(rest);
  // One volume takes a millisecond; a period of four makes volume 1 the turning point.
  device_.setMotion({Motion::Kind::kDrift, kAmplitude, 4e-3});
  device_.start(pattern, 0);
  Data data;
  next(data);
  next(data);
  double error = 0.0, change = 0.0;
  for (int aScan = 30; aScan < 90; ++aScan) {
    const double seconds = 1e-3 + aScan * 1e-5;
    const Motion motion(Motion::Kind::kDrift, kAmplitude, 4e-3);
    const auto place = motion.place(pattern.xMm(aScan), pattern.yMm(0), seconds);
    EXPECT_NEAR(place.xMm,
                pattern.xMm(aScan) - kAmplitude * std::sin(2.0 * std::numbers::pi * seconds / 4e-3), 1e-9);
    change = std::max(change, std::abs(channel(data, 0, aScan) - channel(rest, 0, aScan)));
    error = std::max(error, std::abs(channel(data, 1, aScan) - channel(rest, 1, aScan)));
  }
  EXPECT_GT(change, 0.1);
  EXPECT_LT(error, 0.1);  // the pulse does not depend on the place
}

TEST(ReferenceIntensity, IsThatOfTheLastVolume) {
  Device device(standardSpectrometer(), std::make_shared<Mirror>(1.0, 0.02, 0.1f), 3);
  Processing processing(device.calibration());
  // The dark level and the brightest light of the reference arm, in 4095ths.
  const double calibrated = processing.referenceIntensity();
  EXPECT_GT(calibrated, 0.5);
  EXPECT_LE(calibrated, 2480.0 / 4095.0);
  RawData raw;
  device.start(ScanPattern(200, 1, 2.0, 1.0), 0);
  device.acquire(raw, 0);
  const auto data = std::make_shared<Data>();
  processing.setOutput(data);
  processing.execute(raw);
  EXPECT_NEAR(processing.referenceIntensity(), calibrated, 0.02);
  EXPECT_NE(processing.referenceIntensity(), calibrated);
  for (int index = 0; index < 200; ++index)
    for (auto& count : raw.spectrum(index)) count /= 2;
  processing.execute(raw);
  EXPECT_NEAR(processing.referenceIntensity(), 0.5 * calibrated, 0.01);
}

}  // namespace
}  // namespace oct::simulator::test
