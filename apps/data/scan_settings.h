// What a device scans.
#pragma once

namespace oct::app {

struct ScanSettings {
  int spectrum_length = 2048;  // camera pixels
  int a_scans = 1024;          // per B-scan
  int b_scans = 1;
  double width = 4.0;   // of a B-scan; millimetres
  double length = 4.0;  // over all B-scans; millimetres
  unsigned seed = 1;
};

}  // namespace oct::app
