#include "optics/spectrometer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

/// Full width at half maximum of the source, as a part of the band the camera sees.
constexpr double kSourceWidth = 0.75;

/// Second and third order of the dispersion mismatch, in radians at the edge of the band.
constexpr double kDispersion2 = 14.0;
constexpr double kDispersion3 = 3.0;

}  // namespace

Spectrometer::Spectrometer(int spectrumLength, double centralWavelengthNm, double depthRangeMm)
    : spectrumLength_(spectrumLength), depthRangeMm_(depthRangeMm) {
  if (spectrumLength < 64 || spectrumLength > 4096 || spectrumLength % 2 != 0)
    throw std::invalid_argument("The spectrum length must be even and from 64 to 4096. ");
  // Light from depth z travels 2z further: a fringe takes pi / z of wavenumber, and the deepest visible one
  // takes two places of the even axis.
  wavenumberStep_ = std::numbers::pi / (2.0 * depthRangeMm);
  const double central = 2.0 * std::numbers::pi / (centralWavelengthNm * 1e-6);
  const int last = spectrumLength - 1;
  firstWavenumber_ = central - 0.5 * last * wavenumberStep_;
  const double longest = 2.0 * std::numbers::pi / firstWavenumber_;
  const double shortest = 2.0 * std::numbers::pi / (firstWavenumber_ + last * wavenumberStep_);
  wavenumberPositions_.resize(spectrumLength);
  for (int pixel = 0; pixel < spectrumLength; ++pixel) {
    const double wavelength = longest + (shortest - longest) * pixel / last;
    const double position = (2.0 * std::numbers::pi / wavelength - firstWavenumber_) / wavenumberStep_;
    wavenumberPositions_[pixel] = std::clamp(position, 0.0, static_cast<double>(last));  // against rounding
  }
}

std::vector<double> Spectrometer::dispersionPhase() const {
  std::vector<double> phase;
  phase.reserve(wavenumberPositions_.size());
  for (const double position : wavenumberPositions_) {
    const double u = 2.0 * position / (spectrumLength_ - 1) - 1.0;
    phase.push_back(kDispersion2 * u * u + kDispersion3 * u * u * u);
  }
  return phase;
}

std::vector<float> Spectrometer::sourceSpectrum() const {
  std::vector<float> spectrum;
  spectrum.reserve(wavenumberPositions_.size());
  for (const double position : wavenumberPositions_) {
    const double u = position / (spectrumLength_ - 1) - 0.5;
    const double envelope = std::exp(-4.0 * std::numbers::ln2 * u * u / (kSourceWidth * kSourceWidth));
    // Weak reflections inside the source leave a slow ripple on its spectrum.
    const double ripple = 1.0 + 0.04 * std::cos(31.0 * u + 0.7) + 0.02 * std::cos(83.0 * u);
    spectrum.push_back(static_cast<float>(envelope * ripple / 1.06));
  }
  return spectrum;
}

}  // namespace oct::simulator
