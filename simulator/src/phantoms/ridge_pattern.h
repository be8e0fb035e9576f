// The course of the ridges of a fingerprint.
#pragma once

#include <cstdint>

namespace oct::simulator {

// A point of the lateral plane, in millimetres.
struct LateralPoint {
  double x;
  double y;
};

// Ridges that run in loops around a core beside the middle of the pad.
class RidgePattern {
 public:
  explicit RidgePattern(std::uint64_t seed) : seed_(seed) {}

  // Phase across the ridges, in radians; a ridge's crest lies at every multiple of 2 pi.
  double phase(double x_mm, double y_mm) const;

  // The point on the nearest crest.
  LateralPoint nearest_crest(LateralPoint point) const;

 private:
  std::uint64_t seed_;
};

}  // namespace oct::simulator
