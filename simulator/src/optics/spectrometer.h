// The optics of the simulated device: what each camera pixel sees of the light.
#pragma once

#include <vector>

namespace oct::simulator {

// Light source and spectrometer. Camera pixels are even in wavelength, falling from pixel 0 on, and therefore
// uneven in wavenumber. The "even axis" has as many places as there are pixels, even in wavenumber.
class Spectrometer {
 public:
  // spectrum_length: camera pixels, even, 64 to 4096
  // central_wavelength_nm: wavelength in the middle of the even axis
  // depth_range_mm: optical depth of a whole A-scan; with the pixel count it fixes the width of the band
  Spectrometer(int spectrum_length, double central_wavelength_nm, double depth_range_mm);

  int spectrum_length() const { return spectrum_length_; }
  double depth_range_mm() const { return depth_range_mm_; }

  // Optical depth from one sample of an A-scan to the next.
  double depth_step_mm() const { return depth_range_mm_ / (spectrum_length_ / 2); }

  // Wavenumber at place 0 of the even axis, in radians per millimetre.
  double first_wavenumber() const { return first_wavenumber_; }

  // Wavenumber from place to place of the even axis, in radians per millimetre.
  double wavenumber_step() const { return wavenumber_step_; }

  // Place of every pixel on the even axis, rising from 0 to spectrum_length - 1.
  const std::vector<double>& wavenumber_positions() const { return wavenumber_positions_; }

  // Phase at every pixel, in radians, by which glass in only one arm delays the light of the sample.
  std::vector<double> dispersion_phase() const;

  // Brightness of the source at every pixel, about 1 at the most.
  std::vector<float> source_spectrum() const;

 private:
  int spectrum_length_;
  double depth_range_mm_;
  double wavenumber_step_;
  double first_wavenumber_;
  std::vector<double> wavenumber_positions_;
};

}  // namespace oct::simulator
