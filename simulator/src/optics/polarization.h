// What tissue does to polarized light.
#pragma once

#include <array>
#include <complex>

namespace oct::simulator {

// Amplitudes of the two circular polarizations that the two sensors see. Sensor 0 sees what a mirror sends
// back, sensor 1 the other one.
using PolarizedLight = std::array<std::complex<float>, 2>;

// Follows circularly polarized light through a stack of retarders, there and back.
class LightPath {
 public:
  // Goes on through one more retarder.
  // retardance: phase between its axes, passing once, in radians
  // axis: direction of the slow axis, in radians
  void pass(double retardance, double axis);

  // Light of amplitude 1 that is sent back from here. For a single retarder with retardance r and axis a:
  // cos(r), and sin(r) with the phase 2a - pi/2 relative to the first.
  PolarizedLight returned() const;

 private:
  using Field = std::array<std::complex<double>, 2>;  // linear polarizations along x and y

  // The way back is the transpose of the way there. So the two passages of light that comes in circular one
  // way and leaves circular either way are products of what became of both circular polarizations.
  Field sent_{{{0.70710678118654752, 0.0}, {0.0, 0.70710678118654752}}};
  Field mirrored_{{{0.70710678118654752, 0.0}, {0.0, -0.70710678118654752}}};
};

}  // namespace oct::simulator
