// Analog input, surface, reference intensity.

#include <algorithm>
#include <cmath>
#include <memory>
#include <numbers>
#include <utility>

#include <gtest/gtest.h>

#include "phantoms/finger_pad.h"
#include "phantoms/mirror.h"
#include "processing/surface.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

Data surface_of(const Volume& volume) {
  Data surface;
  find_surface(volume.data(), surface);
  return surface;
}

TEST(Surface, OfTheFingerPadIsFoundWithinAFewSamples) {
  const auto finger = std::make_shared<FingerPad>(3);
  Device device(standard_spectrometer, finger, 3);
  const ScanPattern pattern(150, 4, 4.0, 3.0);
  const auto volume = measure(device, pattern);
  Data surface = surface_of(volume);
  ASSERT_EQ(surface.sizes(), (std::array{150, 4, 1}));
  EXPECT_EQ(surface.ranges_mm(), (std::array{4.0, 3.0, 0.0}));
  int beside = 0, off = 0;
  double sum = 0.0;
  for (int i = 0; i < 600; ++i) {
    const double truth = finger->surface_mm(pattern.x_mm(i % 150), pattern.y_mm(i / 150));
    const double error = (surface.samples()[i] - truth) / volume.cell_mm();
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
  Device device(standard_spectrometer, std::make_shared<Mirror>(1.0, 0.02, 0.2F), 3);
  const ScanPattern pattern(64, 1, 1.0, 1.0);
  const auto volume = measure(device, pattern);
  Data surface = surface_of(volume);
  for (int i = 0; i < 64; ++i)
    EXPECT_NEAR(surface.samples()[i], 1.0 + 0.02 * pattern.x_mm(i), 0.6 * volume.cell_mm()) << i;
}

TEST(Surface, CountsWithTheRangeOfTheVolumeAndIsTheWholeRangeWhereThereIsNone) {
  Device device(standard_spectrometer, std::make_shared<UniformPhantom>(0.0F), 3);
  const auto volume = measure(device, ScanPattern(40, 2, 1.0, 1.0));
  for (int i = 0; i < 30; ++i) volume.data().samples()[1024 * 7 + 512 + i] += 60.0F;
  volume.data().set_ranges({2.0, 1.0, 1.0});
  Data surface = surface_of(volume);
  EXPECT_NEAR(std::exchange(surface.samples()[7], 2.0F), 1.0, 0.03);
  EXPECT_EQ(surface.samples(), std::vector<float>(80, 2.0F));

  Data empty, shallow;
  EXPECT_THROW(find_surface(empty, surface), std::invalid_argument);
  shallow.resize({4, 2, 2}, {1.0, 1.0, 1.0});
  EXPECT_THROW(find_surface(shallow, shallow), std::invalid_argument);
  find_surface(shallow, surface);  // shorter than what the search skips
  EXPECT_EQ(surface.samples(), std::vector<float>(4, 1.0F));
}

class AnalogSignals : public testing::Test {
 protected:
  // Acquires a volume of a device in motion and reads its analog input; the last of so many.
  const std::vector<float>& read(const ScanPattern& pattern, int volumes, double a_scans_per_second = 100e3,
                                 const Motion& motion = {}) {
    device_ =
        std::make_unique<Device>(Spectrometer(64, 1300.0, 3.6), std::make_shared<Mirror>(1.0, 0.02, 0.1F), 3);
    device_->set_pace({.a_scans_per_second = a_scans_per_second});
    device_->set_motion(motion);
    device_->start(pattern, 0);
    for (int i = 0; i < volumes; ++i) device_->acquire(raw_, 0);
    device_->read_analog_input(data_);
    return data_.samples();
  }

  std::unique_ptr<Device> device_;
  RawData raw_;
  Data data_;
};

TEST_F(AnalogSignals, HaveTwoChannelsPerAScanAtAFixedPlaceInMemory) {
  EXPECT_THROW(read(ScanPattern(20, 6, 2.0, 2.0), 0), std::logic_error) << "no volume";
  const auto first = read(ScanPattern(20, 6, 2.0, 2.0), 1);
  EXPECT_EQ(data_.sizes(), (std::array{2, 20, 6}));
  const float* const place = data_.samples().data();
  EXPECT_NE(read(ScanPattern(20, 6, 2.0, 2.0), 2), first);
  EXPECT_EQ(data_.samples().data(), place);
  const auto [least, most] = std::ranges::minmax(data_.samples());
  EXPECT_GE(least, -0.011F);
  EXPECT_LE(most, 1.011F);
  device_->stop();
  EXPECT_THROW(device_->read_analog_input(data_), std::logic_error);
}

TEST_F(AnalogSignals, PulseBeatsByTheAScanRate) {
  const auto& samples = read(ScanPattern(4000, 1, 2.0, 2.0), 1, 1200.0);
  // A beat takes 1000 A-scans: steep rises at 0, 1000, ... to the crest 150 A-scans later.
  for (int beat = 0; beat < 4000; beat += 1000) {
    EXPECT_NEAR(samples[2 * (beat + 75) + 1], 0.5, 0.02);
    EXPECT_NEAR(samples[2 * (beat + 150) + 1], 1.0, 0.02);
    EXPECT_NEAR(samples[2 * (beat + 400) + 1], std::exp(-1.0), 0.02);
  }
}

// One volume takes a millisecond; a period of four makes volume 1 the turning point.
TEST_F(AnalogSignals, GlowMovesWithThePhantom) {
  const ScanPattern pattern(100, 1, 2.0, 1.0);
  const Motion motion(Motion::Kind::drift, 0.4, 4e-3);
  const auto rest = read(pattern, 2);
  const auto& moved = read(pattern, 2, 100e3, motion);
  double change = 0.0, error = 0.0;
  for (int a_scan = 30; a_scan < 90; ++a_scan) {
    change = std::max(change, std::abs(double{moved[2 * a_scan]} - rest[2 * a_scan]));
    error = std::max(error, std::abs(double{moved[2 * a_scan + 1]} - rest[2 * a_scan + 1]));
  }
  EXPECT_GT(change, 0.1);
  EXPECT_LT(error, 0.03) << "the pulse does not depend on the place";
  const double expected = pattern.x_mm(50) - 0.4 * std::sin(2.0 * std::numbers::pi * 1.5e-3 / 4e-3);
  EXPECT_NEAR(motion.place(pattern.x_mm(50), 0.0, 1.5e-3).x_mm, expected, 1e-9);
}

// Breathing goes to and from the device, beginning at rest, and shows in the picture.
TEST(Breathing, MovesTheMirrorInDepth) {
  Device device(Spectrometer(512, 1300.0, 3.6), std::make_shared<Mirror>(1.0, 0.02, 0.1F), 3);
  device.set_motion({Motion::Kind::breathing, 0.3, 4.0});
  device.set_pace({.a_scans_per_second = 20.0});  // a volume takes a second
  device.start(ScanPattern(20, 1, 1.0, 1.0), 0);
  for (int second = 0; second < 4; ++second) {
    RawData raw;
    device.acquire(raw, 0);
    const auto volume = process(device.calibration(), raw);
    const double away = 0.3 * std::sin(0.5 * std::numbers::pi * (second + 10.0 / 20.0));
    EXPECT_NEAR(volume.peak(10) * volume.cell_mm(), 1.0 + away, 2.0 * volume.cell_mm()) << second;
  }
}

TEST(ReferenceIntensity, IsThatOfTheLastVolume) {
  Device device(standard_spectrometer, std::make_shared<Mirror>(1.0, 0.02, 0.1F), 3);
  Processing processing(device.calibration());
  // The dark level and the brightest light of the reference arm, in 4095ths.
  const double calibrated = processing.reference_intensity();
  EXPECT_GT(calibrated, 0.5);
  EXPECT_LE(calibrated, 2480.0 / 4095.0);
  RawData raw = acquire(device, ScanPattern(200, 1, 2.0, 1.0));
  const auto data = std::make_shared<Data>();
  processing.set_output(data);
  processing.execute(raw);
  EXPECT_NEAR(processing.reference_intensity(), calibrated, 0.02);
  EXPECT_NE(processing.reference_intensity(), calibrated);
  for (int index = 0; index < 200; ++index)
    for (auto& count : raw.spectrum(index)) count /= 2;
  processing.execute(raw);
  EXPECT_NEAR(processing.reference_intensity(), 0.5 * calibrated, 0.01);
}

}  // namespace
}  // namespace oct::simulator::test
