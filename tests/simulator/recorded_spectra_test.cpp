// The simulator's processing against spectra of a real spectrometer and the picture made of them elsewhere.

#include <algorithm>
#include <cmath>
#include <filesystem>

#include <gtest/gtest.h>

#include "data/formats/npy_header.h"
#include "data/image_reader.h"
#include "simulator/measurement.h"

namespace oct::simulator::test {
namespace {

constexpr int pixels = 1024;
const std::filesystem::path folder = OCT_SHARED_DATA;

// The elements of an array, all axes in one row. Positions and phases want all of their 64 bits, which an image has not.
template <class Element>
std::vector<Element> elements_of(const char* name) {
  app::InputFile file(folder / name);
  const auto offset = app::read_npy_header(file).data_offset;
  std::vector<Element> elements((file.size() - offset) / sizeof(Element));
  file.read(elements.data(), elements.size() * sizeof(Element));
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
  const auto picture = app::load_image(folder / "spectra_wood_reference.png", {}, false).image;
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

}  // namespace
}  // namespace oct::simulator::test
