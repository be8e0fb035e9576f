#include "device/scan_pattern.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace oct::simulator {

ScanPattern::ScanPattern(int a_scans, int b_scans, double width_mm, double length_mm)
    : a_scans_(a_scans), b_scans_(b_scans), width_mm_(width_mm), length_mm_(length_mm) {
  if (a_scans < 1 || b_scans < 1)
    throw std::invalid_argument("A scan pattern needs at least one A-scan and one B-scan. ");
  if (a_scans > std::numeric_limits<int>::max() / b_scans)
    throw std::invalid_argument("The scan pattern has too many A-scans. ");
  if (!(width_mm > 0.0 && length_mm > 0.0 && std::isfinite(width_mm) && std::isfinite(length_mm)))
    throw std::invalid_argument("The width and length of a scan pattern must be above zero. ");
}

}  // namespace oct::simulator
