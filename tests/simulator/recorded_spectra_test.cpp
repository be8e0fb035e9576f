// The simulator's processing against spectra of a real spectrometer and the picture made of them elsewhere.

#include <gtest/gtest.h>

#include "simulator/measurement.h"
#include "support/npy.h"

#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_STATIC
#define STBI_ONLY_PNG
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-function"
#include <stb/stb_image.h>
#pragma GCC diagnostic pop

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace oct::simulator::test {
namespace {

constexpr int pixels = 1024;
constexpr int a_scans = 1049;
constexpr int depths = pixels / 2;

std::filesystem::path recordings() {
  const char* folder = std::getenv("OCT_SHARED_DATA");
  return folder ? folder : OCT_SHARED_DATA;
}

RawData read_spectra(const std::filesystem::path& file) {
  const auto counts = oct::test::read_npy<std::uint16_t>(file, "<u2");
  if (counts.size() != std::size_t{pixels} * a_scans)
    throw std::runtime_error("Unexpected number of spectra. ");
  RawData raw;
  raw.resize(pixels, a_scans, 1, 1.0, 1.0);
  for (int a_scan = 0; a_scan < a_scans; ++a_scan)
    std::copy_n(counts.begin() + std::ptrdiff_t{a_scan} * pixels, pixels, raw.spectrum(a_scan).begin());
  return raw;
}

// Grey values 0 to 255 as the reference picture shows them: 31 dB black, 67 dB white, for
// a transform that is not scaled.
double grey(float decibels) {
  const double unscaled = decibels + 10.0 * std::log10(pixels);
  return std::clamp((unscaled - 31.0) / (67.0 - 31.0), 0.0, 1.0) * 255.0;
}

TEST(RecordedSpectra, GiveTheReferencePicture) {
  const auto folder = recordings();
  if (folder.empty() || !std::filesystem::exists(folder / "spectra_wood.npy"))
    GTEST_SKIP() << "no recorded spectra: set OCT_SHARED_DATA to the folder that holds spectra_wood.npy";
  int width = 0, height = 0, channels = 0;
  const std::unique_ptr<unsigned char, void (*)(void*)> picture(
      stbi_load((folder / "spectra_wood_reference.png").string().c_str(), &width, &height, &channels, 1),
      stbi_image_free);
  ASSERT_TRUE(picture);
  ASSERT_EQ(width, a_scans);
  ASSERT_EQ(height, depths);

  const Calibration calibration{
      .depth_range_mm = 1.0,
      .wavenumber_positions = oct::test::read_npy<double>(folder / "spectra_wood_kpos.npy", "<f8"),
      .compensation_phase = oct::test::read_npy<double>(folder / "spectra_wood_dispersion.npy", "<f8"),
      .background = std::vector<float>(pixels)};
  const auto volume = process(calibration, read_spectra(folder / "spectra_wood.npy"));

  Correlation correlation;
  double off = 0.0;
  for (int depth = 0; depth < depths; ++depth)
    for (int a_scan = 0; a_scan < a_scans; ++a_scan) {
      const double mine = grey(volume.at(depth, a_scan));
      const double theirs = picture.get()[depth * a_scans + a_scan];
      correlation.add(mine, theirs);
      off += std::abs(mine - theirs);
    }
  EXPECT_GT(correlation.value(), 0.995);
  EXPECT_LT(off / (double{depths} * a_scans), 3.0);
}

}  // namespace
}  // namespace oct::simulator::test
