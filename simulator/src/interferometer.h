/// @file
/// Light from the phantom meets light from the reference arm.
#pragma once

#include "fourier.h"
#include "phantom.h"
#include "resampler.h"
#include "scatter_field.h"
#include "spectrometer.h"

#include <complex>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

namespace oct::simulator {

/// Computes spectral interferograms without noise. Used by several threads at once, each with its own
/// Scratch.
class Interferometer {
public:
  /// Working memory of one thread.
  class Scratch {
  public:
    explicit Scratch(int spectrumLength);

  private:
    friend class Interferometer;
    Fourier fourier_;
    DepthProfile profile_;
    std::vector<std::complex<float>> scatterers_;
    std::vector<std::complex<float>> depths_;
    std::vector<std::complex<float>> evenWaves_;
    std::vector<std::complex<float>> waves_;
  };

  Interferometer(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom,
                 std::uint64_t seed);

  /// @param light receives one value per camera pixel, relative to the brightest light of the reference arm
  void measure(double xMm, double yMm, Scratch& scratch, std::span<float> light) const;

private:
  void addReflector(const Reflector& reflector, std::vector<std::complex<float>>& evenWaves) const;

  int spectrumLength_;
  double depthStepMm_;
  double firstWavenumber_;
  double wavenumberStep_;
  double middleTurn_;  // phase from place to place of the even axis for light from half the depth range
  std::shared_ptr<const Phantom> phantom_;
  ScatterField scatterField_;
  Resampler toPixels_;
  std::vector<float> source_;
  std::vector<float> rollOff_;
  std::vector<std::complex<float>> carrier_;
};

}  // namespace oct::simulator
