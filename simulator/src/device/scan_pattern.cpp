#include "device/scan_pattern.h"

#include <cmath>
#include <limits>
#include <stdexcept>

namespace oct::simulator {

ScanPattern::ScanPattern(int aScans, int bScans, double widthMm, double lengthMm)
    : aScans_(aScans), bScans_(bScans), widthMm_(widthMm), lengthMm_(lengthMm) {
  if (aScans < 1 || bScans < 1)
    throw std::invalid_argument("A scan pattern needs at least one A-scan and one B-scan. ");
  if (aScans > std::numeric_limits<int>::max() / bScans)
    throw std::invalid_argument("The scan pattern has too many A-scans. ");
  if (!(widthMm > 0.0 && lengthMm > 0.0 && std::isfinite(widthMm) && std::isfinite(lengthMm)))
    throw std::invalid_argument("The width and length of a scan pattern must be above zero. ");
}

}  // namespace oct::simulator
