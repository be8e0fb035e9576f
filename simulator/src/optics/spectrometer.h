/// @file
/// The optics of the simulated device: what each camera pixel sees of the light.
#pragma once

#include <vector>

namespace oct::simulator {

/// Light source and spectrometer. Camera pixels are even in wavelength, falling from pixel 0 on, and
/// therefore uneven in wavenumber. The "even axis" has as many places as there are pixels, even in
/// wavenumber.
class Spectrometer {
 public:
  /// @param spectrumLength camera pixels, even, 64 to 4096
  /// @param centralWavelengthNm wavelength in the middle of the even axis
  /// @param depthRangeMm optical depth of a whole A-scan; with the pixel count it fixes the width of the band
  Spectrometer(int spectrumLength, double centralWavelengthNm, double depthRangeMm);

  int spectrumLength() const { return spectrumLength_; }
  double depthRangeMm() const { return depthRangeMm_; }

  /// Optical depth from one sample of an A-scan to the next.
  double depthStepMm() const { return depthRangeMm_ / (spectrumLength_ / 2); }

  /// Wavenumber at place 0 of the even axis, in radians per millimetre.
  double firstWavenumber() const { return firstWavenumber_; }

  /// Wavenumber from place to place of the even axis, in radians per millimetre.
  double wavenumberStep() const { return wavenumberStep_; }

  /// Place of every pixel on the even axis, rising from 0 to spectrumLength - 1.
  const std::vector<double>& wavenumberPositions() const { return wavenumberPositions_; }

  /// Phase at every pixel, in radians, by which glass in only one arm delays the light of the sample.
  std::vector<double> dispersionPhase() const;

  /// Brightness of the source at every pixel, about 1 at the most.
  std::vector<float> sourceSpectrum() const;

 private:
  int spectrumLength_;
  double depthRangeMm_;
  double wavenumberStep_;
  double firstWavenumber_;
  std::vector<double> wavenumberPositions_;
};

}  // namespace oct::simulator
