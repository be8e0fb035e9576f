// What a device hands to its processing.
#pragma once

#include <vector>

namespace oct::simulator {

// What the processing must know about a spectrometer. All sequences have one value per camera pixel.
struct Calibration {
  double depth_range_mm = 0.0;               // optical depth of a whole A-scan
  std::vector<double> wavenumber_positions;  // place on an axis of even wavenumber, rising, 0 to length - 1
  std::vector<double> compensation_phase;    // phase in radians to be added against dispersion
  std::vector<float> background;             // reading of the reference arm alone
};

}  // namespace oct::simulator
