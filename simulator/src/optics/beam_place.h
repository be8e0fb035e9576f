/// @file
/// Where the beam meets the phantom.
#pragma once

namespace oct::simulator {

/// A lateral position on the phantom, and the phantom's distance.
struct BeamPlace {
  double xMm;
  double yMm;
  double deeperMm = 0.0;  ///< how far the phantom has moved away from the device
};

}  // namespace oct::simulator
