/// @file
/// A test target with known polarization.
#pragma once

#include "phantoms/phantom.h"

namespace oct::simulator {

/// Flat layers: neutral gel, a wave plate, gel again, a layer that destroys polarization, and gel with
/// stretched fibres whose retardation grows with depth. All scatter but the plate.
class PolarizationTarget : public Phantom {
 public:
  /// Optical depths of the borders, in millimetres.
  static constexpr double kGelTop = 0.4;
  static constexpr double kPlateTop = 0.8;
  static constexpr double kPlateBottom = 0.9;
  static constexpr double kDepolarizerTop = 1.4;
  static constexpr double kFibresTop = 1.8;
  static constexpr double kBottom = 2.6;

  /// Retardation of the fibres per millimetre, in radians, passing once.
  static constexpr double kFibreRate = 4.0;

  /// @param retardance of the plate, passing once, in radians
  /// @param axis slow axis of plate and fibres, in radians
  PolarizationTarget(double retardance, double axis) : retardance_(retardance), axis_(axis) {}

  void describe(double xMm, double yMm, double cellMm, DepthProfile& profile) const override;

 private:
  double retardance_;
  double axis_;
};

}  // namespace oct::simulator
