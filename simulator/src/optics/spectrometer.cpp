#include "optics/spectrometer.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

// Full width at half maximum of the source, as a part of the band the camera sees.
constexpr double source_width = 0.75;

// Second and third order of the dispersion mismatch, in radians at the edge of the band.
constexpr double dispersion2 = 14.0;
constexpr double dispersion3 = 3.0;

}  // namespace

Spectrometer::Spectrometer(int spectrum_length, double central_wavelength_nm, double depth_range_mm)
    : spectrum_length_(spectrum_length), depth_range_mm_(depth_range_mm) {
  if (spectrum_length < 64 || spectrum_length > 4096 || spectrum_length % 2 != 0)
    throw std::invalid_argument("The spectrum length must be even and from 64 to 4096. ");
  // Light from depth z travels 2z further: a fringe takes pi / z of wavenumber, and the deepest visible one
  // takes two places of the even axis.
  wavenumber_step_ = std::numbers::pi / (2.0 * depth_range_mm);
  const double central = 2.0 * std::numbers::pi / (central_wavelength_nm * 1e-6);
  const int last = spectrum_length - 1;
  first_wavenumber_ = central - 0.5 * last * wavenumber_step_;
  const double longest = 2.0 * std::numbers::pi / first_wavenumber_;
  const double shortest = 2.0 * std::numbers::pi / (first_wavenumber_ + last * wavenumber_step_);
  wavenumber_positions_.resize(spectrum_length);
  for (int pixel = 0; pixel < spectrum_length; ++pixel) {
    const double wavelength = longest + (shortest - longest) * pixel / last;
    const double position = (2.0 * std::numbers::pi / wavelength - first_wavenumber_) / wavenumber_step_;
    wavenumber_positions_[pixel] = std::clamp(position, 0.0, static_cast<double>(last));  // against rounding
  }
}

std::vector<double> Spectrometer::dispersion_phase() const {
  std::vector<double> phase;
  phase.reserve(wavenumber_positions_.size());
  for (const double position : wavenumber_positions_) {
    const double u = 2.0 * position / (spectrum_length_ - 1) - 1.0;
    phase.push_back(dispersion2 * u * u + dispersion3 * u * u * u);
  }
  return phase;
}

std::vector<float> Spectrometer::source_spectrum() const {
  std::vector<float> spectrum;
  spectrum.reserve(wavenumber_positions_.size());
  for (const double position : wavenumber_positions_) {
    const double u = position / (spectrum_length_ - 1) - 0.5;
    const double envelope = std::exp(-4.0 * std::numbers::ln2 * u * u / (source_width * source_width));
    // Weak reflections inside the source leave a slow ripple on its spectrum.
    const double ripple = 1.0 + 0.04 * std::cos(31.0 * u + 0.7) + 0.02 * std::cos(83.0 * u);
    spectrum.push_back(static_cast<float>(envelope * ripple / 1.06));
  }
  return spectrum;
}

}  // namespace oct::simulator
