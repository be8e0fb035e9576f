// What a phantom tells the interferometer about itself.
#pragma once

#include <vector>

namespace oct::simulator {

// A smooth surface that returns light with a definite phase.
struct Reflector {
  double depth_mm;  // optical depth
  float amplitude;  // fringe amplitude relative to the light of the reference arm
};

// What the object does to the polarization of light, one value per depth cell.
struct PolarizationProfile {
  std::vector<float> retardance;      // phase between slow and fast axis in radians, passing the cell once
  std::vector<float> axis;            // direction of the slow axis in radians
  std::vector<float> depolarization;  // part of the scattered power that has lost its polarization, 0 to 1
};

// Everything that sends light back along one A-scan. Depths are optical: geometric depth times the
// refractive index on the way.
struct DepthProfile {
  // Light scattered from each depth cell, already weakened by the tissue above it: the fringe amplitude a
  // millimetre of such cells would give, per square root of a millimetre, relative to the reference arm.
  std::vector<float> scattering;
  std::vector<Reflector> reflectors;
  // All vectors are empty for devices that do not tell polarizations apart.
  PolarizationProfile polarization;

  bool is_polarized() const { return !polarization.retardance.empty(); }
};

// An object in front of the device. The beam comes from depth 0; lateral position (0, 0) is the middle.
class Phantom {
 public:
  virtual ~Phantom() = default;

  // Describes the object at one lateral position. Called by several threads at once.
  // cell_mm: optical depth per cell
  // profile: receives the description; the size of its scattering is the number of cells to fill,
  //   and it comes with all cells zero and without reflectors; the same holds for the polarization
  //   where its vectors are not empty
  virtual void describe(double x_mm, double y_mm, double cell_mm, DepthProfile& profile) const = 0;
};

}  // namespace oct::simulator
