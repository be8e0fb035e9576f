/// @file
/// A mirror, to measure the device itself.
#pragma once

#include "phantoms/phantom.h"

namespace oct::simulator {

/// A flat mirror that is tilted along x, so that its fringes differ from A-scan to A-scan and survive the
/// background removal.
class Mirror : public Phantom {
 public:
  /// @param depthMm optical depth in the middle
  /// @param slope depth per lateral distance
  /// @param amplitude fringe amplitude relative to the light of the reference arm
  Mirror(double depthMm, double slope, float amplitude);

  void describe(double xMm, double yMm, double cellMm, DepthProfile& profile) const override;

 private:
  double depthMm_;
  double slope_;
  float amplitude_;
};

}  // namespace oct::simulator
