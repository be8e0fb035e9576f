// A mirror, to measure the device itself.
#pragma once

#include "phantoms/phantom.h"

namespace oct::simulator {

// A flat mirror that is tilted along x, so that its fringes differ from A-scan to A-scan and survive the
// background removal.
class Mirror : public Phantom {
 public:
  // depth_mm: optical depth in the middle
  // slope: depth per lateral distance
  // amplitude: fringe amplitude relative to the light of the reference arm
  Mirror(double depth_mm, double slope, float amplitude);

  void describe(double x_mm, double y_mm, double cell_mm, DepthProfile& profile) const override;

 private:
  double depth_mm_;
  double slope_;
  float amplitude_;
};

}  // namespace oct::simulator
