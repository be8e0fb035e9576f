// Blood vessels.
#pragma once

namespace oct::simulator {

// A vessel that runs across the scanned field: along x as y = offset + slope x + bend x^2 plus a wiggle, or
// with x and y exchanged. Lengths in millimetres.
struct Vessel {
  bool along_y;
  double offset;
  double slope;
  double bend;
  double wiggle;        // amplitude of the wiggle
  double wiggle_phase;  // in radians
  double depth;         // depth of the axis; what it counts from is the phantom's choice
  double radius;

  // Lateral distance of a point from the vessel's axis.
  double distance(double x_mm, double y_mm) const;

  // Half the vessel's height above a point, 0 beside it.
  double half_height(double x_mm, double y_mm) const;
};

}  // namespace oct::simulator
