// Where the beam meets the phantom.
#pragma once

namespace oct::simulator {

// A lateral position on the phantom, and the phantom's distance.
struct BeamPlace {
  double x_mm;
  double y_mm;
  double deeper_mm = 0.0;  // how far the phantom has moved away from the device
};

}  // namespace oct::simulator
