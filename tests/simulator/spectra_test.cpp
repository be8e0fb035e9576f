// The way from spectra to depths: a mirror's peak with its place, sharpness and level, and spectra of a real
// spectrometer with the picture made of them elsewhere.
#include <algorithm>
#include <cmath>
#include <complex>
#include <filesystem>
#include <numbers>
#include <stdexcept>

#include <gtest/gtest.h>

#include "data/arrays/npy_header.h"
#include "data/image_reader.h"
#include "phantoms/mirror.h"
#include "signals/resampler.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

constexpr double slope = 0.02;
const ScanPattern pattern(64, 1, 1.0, 1.0);

RawData mirror_spectra(double depth_mm, float amplitude = 0.1F) {
  Device device(standard_spectrometer, std::make_shared<Mirror>(depth_mm, slope, amplitude), 5);
  return acquire(device, pattern);
}

Calibration standard_calibration() {
  return Device(standard_spectrometer, std::make_shared<UniformPhantom>(0.0F), 5).calibration();
}

// As Volume::peak_width(), of the transform of a Hann window over the source's Gaussian: all of its power beside
// its highest.
double ideal_width() {
  const int size = 2048;
  double sum = 0.0, squares = 0.0;
  for (int i = 0; i < size; ++i) {
    const double u = (i + 0.5) / size - 0.5;
    const double gauss = std::exp(-4.0 * std::numbers::ln2 * u * u / (0.75 * 0.75));
    const double weight = gauss * std::pow(std::cos(std::numbers::pi * u), 2);
    sum += weight;
    squares += weight * weight;
  }
  return size * squares / (sum * sum);
}

TEST(Mirror, PeakLiesAtTheMirrorAndIsAsSharpAsTheSpectrumAllows) {
  const auto calibration = standard_calibration();
  const double expected_width = ideal_width();
  std::vector<float> levels;
  for (const double depth : {0.15, 0.6, 1.0, 1.8, 2.3}) {
    const auto volume = process(calibration, mirror_spectra(depth));
    levels.push_back(volume.at(static_cast<int>(std::lround(volume.peak(32))), 32));
    for (int a_scan = 0; a_scan < 64; ++a_scan) {
      const double depth_mm = depth + slope * pattern.x_mm(a_scan);
      EXPECT_NEAR(volume.peak(a_scan) * volume.cell_mm(), depth_mm, 0.1 * volume.cell_mm()) << a_scan;
      EXPECT_NEAR(volume.peak_width(a_scan), expected_width, 0.08 * expected_width)
          << depth << ", " << a_scan;
    }
  }
  EXPECT_LT(levels[4], levels[0] - 0.5) << "deeper mirrors are weaker";
  EXPECT_GT(levels[4], levels[0] - 6.0);
  const auto weak = process(calibration, mirror_spectra(1.0, 0.02F));
  const auto strong = process(calibration, mirror_spectra(1.0, 0.2F));
  EXPECT_NEAR(strong.at(284, 32) - weak.at(284, 32), 20.0, 0.5) << "ten times the amplitude";
}

TEST(Mirror, IsSharpAndBrightOnlyWithDispersionAndWavenumbersCorrected) {
  const auto raw = mirror_spectra(1.0);
  const auto calibration = standard_calibration();
  const auto volume = process(calibration, raw);
  const double noise = volume.mean_power(600, 1000);
  EXPECT_LT(volume.mean_power(0, 10), 3.0 * noise) << "the background";
  EXPECT_GT(volume.power(285, 32), 1e5 * noise);

  auto dispersed = calibration;
  dispersed.compensation_phase.assign(2048, 0.0);
  EXPECT_GT(process(dispersed, raw).peak_width(20), 1.5 * volume.peak_width(20));

  auto unsampled = calibration;
  for (int i = 0; i < 2048; ++i) unsampled.wavenumber_positions[i] = i;
  const auto blurred = process(unsampled, raw);
  EXPECT_LT(blurred.at(static_cast<int>(std::lround(blurred.peak(32))), 32), volume.at(285, 32) - 6.0);
}

TEST(Mirror, IsSeenWithEverySpectrumLength) {
  for (const int length : {-2, 0, 62, 65, 2047, 4098})
    EXPECT_THROW(Spectrometer(length, 1300.0, 3.6), std::invalid_argument) << length;
  for (const int length : {64, 66, 90, 154, 250, 1022, 4096}) {
    Device device(Spectrometer(length, 1300.0, 3.6), std::make_shared<Mirror>(1.0, slope, 0.1F), 1);
    const auto volume = measure(device, ScanPattern(20, 1, 0.2, 1.0));
    EXPECT_NEAR(volume.peak(10) * volume.cell_mm(), 1.0, 0.3 * volume.cell_mm()) << length;
  }
}

// The last group is not full, and an A-scan may stand in any lane.
TEST(Processing, DoesNotDependOnTheLane) {
  Device device(Spectrometer(256, 1300.0, 3.6), std::make_shared<Mirror>(1.0, 0.3, 0.1F), 5);
  const RawData all = acquire(device, ScanPattern(7, 1, 2.0, 1.0));
  // So few take the calibrated background.
  const auto together = process(device.calibration(), all);
  EXPECT_NEAR(together.peak(3) * together.cell_mm(), 1.0, 0.1 * together.cell_mm());
  EXPECT_LT(together.mean_power(2, 10), 1e-3 * together.power(36, 3));
  for (int first = 0; first < 7; ++first) {
    RawData rest;
    rest.resize(256, 7 - first, 1, 1.0, 1.0);
    for (int index = first; index < 7; ++index)
      std::ranges::copy(all.spectrum(index), rest.spectrum(index - first).begin());
    const auto alone = process(device.calibration(), rest);
    for (int index = first; index < 7; ++index)
      for (int depth = 0; depth < 128; ++depth)
        ASSERT_EQ(alone.at(depth, index - first), together.at(depth, index)) << first << ' ' << index;
  }
}

// More readings in a B-scan than 32 bits can add up, and a background of its own in the next.
TEST(Processing, TheMeanOfEveryBScanIsExact) {
  constexpr int many = 70000;
  RawData raw;
  raw.resize(64, many, 2, 1.0, 1.0);
  for (int index = 0; index < 2 * many; ++index)
    for (int pixel = 0; pixel < 64; ++pixel)
      raw.spectrum(index)[pixel] = static_cast<std::uint16_t>(index < many ? 65535 : 500 + pixel);
  Device device(Spectrometer(64, 1300.0, 3.6), std::make_shared<UniformPhantom>(0.0F), 5);
  EXPECT_LT(std::ranges::max(process(device.calibration(), raw).samples()), -59.96F);
}

constexpr int pixels = 1024;
const std::filesystem::path folder = OCT_SHARED_DATA;

// The elements of an array, all axes in one row. Positions and phases want all of their 64 bits, which an image has not.
template <class Element>
std::vector<Element> elements_of(const char* name) {
  const auto file = app::open_bytes(std::make_shared<app::InputFile>(folder / name), app::Compression::none);
  const auto offset = app::read_npy_header(*file).data_offset;
  std::vector<Element> elements((file->most_bytes() - offset) / sizeof(Element));
  file->read(elements.data(), elements.size() * sizeof(Element));
  return elements;
}

// Grey values 0 to 255 as the reference picture shows them: 31 dB black, 67 dB white, for
// a transform that is not scaled.
double grey(float decibels) {
  const double unscaled = decibels + 10.0 * std::log10(pixels);
  return std::clamp((unscaled - 31.0) / (67.0 - 31.0), 0.0, 1.0) * 255.0;
}

TEST(RecordedSpectra, GiveTheReferencePicture) {
  if (!std::filesystem::exists(folder / "spectra_wood.npy"))
    GTEST_SKIP() << "no recorded spectra: set OCT_SHARED_DATA to the folder that holds spectra_wood.npy";
  const auto picture = app::load_image({folder / "spectra_wood_reference.png", {}, {}}, {}).image;
  const auto counts = elements_of<std::uint16_t>("spectra_wood.npy");
  RawData raw;
  raw.resize(pixels, static_cast<int>(picture.ascans), 1, 1.0, 1.0);
  ASSERT_EQ(counts.size(), pixels * picture.ascans);
  std::ranges::copy(counts, raw.spectrum(0).data());
  const auto volume = process({.depth_range_mm = 1.0,
                               .wavenumber_positions = elements_of<double>("spectra_wood_kpos.npy"),
                               .compensation_phase = elements_of<double>("spectra_wood_dispersion.npy"),
                               .background = std::vector<float>(pixels)},
                              raw);

  ASSERT_EQ(volume.samples().size(), picture.samples.size());
  const std::vector<double> theirs(picture.samples.begin(), picture.samples.end());
  std::vector<double> mine;
  double off = 0.0;
  for (const float decibels : volume.samples()) {
    mine.push_back(grey(decibels));
    off += std::abs(mine.back() - theirs[mine.size() - 1]);
  }
  EXPECT_GT(correlation_of(mine, theirs), 0.995);
  EXPECT_LT(off / static_cast<double>(mine.size()), 3.0);
}

TEST(Resampler, KeepsLevels) {
  const std::vector<std::complex<float>> level(20, {2.0F, -1.0F});
  std::vector<std::complex<float>> read(3);
  Resampler(20, {5.0, 8.3, 9.9}).apply(level.data(), read.data());
  for (const auto& value : read) EXPECT_LT(std::abs(value - level[0]), 1e-5F);
}

TEST(Resampler, RefusesPositionsOutsideTheSignal) {
  for (const double position : {-0.1, 19.1, std::nan("")})
    EXPECT_THROW(Resampler(20, {position}), std::invalid_argument) << position;
  EXPECT_THROW(Resampler(4, {1.0}), std::invalid_argument);
}

TEST(InvertPositions, FindsThePlacesOfWholeValues) {
  EXPECT_EQ(invert_positions({0.0, 0.5, 2.5, 3.0}), (std::vector{0.0, 1.25, 1.75, 3.0}));
  EXPECT_THROW(invert_positions({0.0, 0.0, 2.0, 3.0}), std::invalid_argument);
}

}  // namespace
}  // namespace oct::simulator::test
