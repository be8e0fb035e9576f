// Light from the phantom meets light from the reference arm.
#pragma once

#include <array>
#include <complex>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "optics/beam_place.h"
#include "optics/polarization.h"
#include "optics/spectrometer.h"
#include "phantoms/phantom.h"
#include "phantoms/scatter_field.h"
#include "signals/fourier.h"
#include "signals/lanes.h"
#include "signals/resampler.h"

namespace oct::simulator {

// Computes spectral interferograms without noise. One sensor sees all the light; of two, each sees one
// circular polarization, and the beam that goes to the phantom is circularly polarized. Used by several
// threads at once, each with its own Scratch.
class Interferometer {
 public:
  // Working memory of one thread.
  class Scratch {
   public:
    Scratch(int spectrum_length, int sensors);

   private:
    friend class Interferometer;

    // What one sensor sees of the A-scans.
    struct View {
      std::vector<std::complex<Lanes>> depths;
      std::array<std::vector<Reflector>, Lanes::count> reflectors;
      std::array<std::vector<std::complex<float>>, Lanes::count> parts;  // of every reflector's light
      std::array<float, Lanes::count> sample_powers;
    };

    LaneFourier fourier_;
    DepthProfile profile_;
    std::vector<PolarizedLight> polarizations_;
    std::vector<std::complex<float>> scatterers_;
    std::array<std::vector<std::complex<float>>, 2> strays_;
    std::vector<View> views_;
    std::vector<std::complex<Lanes>> even_waves_;
    std::vector<std::complex<Lanes>> waves_;
    std::vector<Lanes> light_;
  };

  Interferometer(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom,
                 std::uint64_t seed);

  // Measures a few A-scans at once.
  // places: what the beam hits, at most Lanes::count
  // light: for every place one row per sensor that receives one value per camera pixel, relative to the
  //   brightest light of the reference arm
  void measure(std::span<const BeamPlace> places, Scratch& scratch,
               std::span<const std::span<float>> light) const;

 private:
  using Waves = std::vector<std::complex<Lanes>>;

  void describe(const BeamPlace& place, Scratch& scratch) const;
  void scatter(int sensor, int lane, Scratch& scratch) const;
  void interfere(const Scratch::View& view, std::span<const BeamPlace> places, Scratch& scratch) const;
  std::complex<float> weight(const Scratch& scratch, int sensor, int cell) const;
  void add_reflector(const Reflector& reflector, std::complex<float> weight, int lane,
                     Waves& even_waves) const;
  void move_deeper(double distance_mm, int lane, Waves& even_waves) const;

  int spectrum_length_;
  double depth_step_mm_;
  double first_wavenumber_;
  double wavenumber_step_;
  double middle_turn_;  // phase from place to place of the even axis for light from half the depth range
  std::shared_ptr<const Phantom> phantom_;
  ScatterField scatter_field_;
  Resampler to_pixels_;
  std::vector<float> source_;
  std::vector<float> roll_off_;
  std::vector<std::complex<float>> carrier_;
};

}  // namespace oct::simulator
