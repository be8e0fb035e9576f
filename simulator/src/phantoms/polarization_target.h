// A test target with known polarization.
#pragma once

#include "phantoms/phantom.h"

namespace oct::simulator {

// Flat layers: neutral gel, a wave plate, gel again, a layer that destroys polarization, and gel with
// stretched fibres whose retardation grows with depth. All scatter but the plate.
class PolarizationTarget : public Phantom {
 public:
  // Optical depths of the borders, in millimetres.
  static constexpr double gel_top = 0.4;
  static constexpr double plate_top = 0.8;
  static constexpr double plate_bottom = 0.9;
  static constexpr double depolarizer_top = 1.4;
  static constexpr double fibres_top = 1.8;
  static constexpr double bottom_mm = 2.6;

  // Retardation of the fibres per millimetre, in radians, passing once.
  static constexpr double fibre_rate = 4.0;

  // retardance: of the plate, passing once, in radians
  // axis: slow axis of plate and fibres, in radians
  PolarizationTarget(double retardance, double axis) : retardance_(retardance), axis_(axis) {}

  void describe(double x_mm, double y_mm, double cell_mm, DepthProfile& profile) const override;

 private:
  double retardance_;
  double axis_;
};

}  // namespace oct::simulator
