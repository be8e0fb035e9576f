// Finds the surface of a volume.
#pragma once

#include "base/data.h"

namespace oct::simulator {

// Finds in every A-scan where light first comes back, clearly above the noise of the whole volume.
// volume: decibels
// surface: receives one depth in millimetres per A-scan, counted by the volume's own depth range: axis 1 is
//   A-scans, axis 2 is B-scans; the whole depth range where nothing was found
// workers: number of threads, 0 for one per core; the result does not depend on it
void find_surface(Data& volume, Data& surface, int workers = 0);

}  // namespace oct::simulator
