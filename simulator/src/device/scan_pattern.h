/// @file
/// Where a volume is measured.
#pragma once

#include "base/handle_table.h"

namespace oct::simulator {

/// A grid of A-scans around lateral position (0, 0). Every A-scan stands for the middle of its own piece of
/// the field, so that the outermost lie half a distance inside the edge.
class ScanPattern : public HandleObject {
 public:
  static constexpr const char* kName = "scan pattern";

  ScanPattern(int aScans, int bScans, double widthMm, double lengthMm);

  int aScans() const { return aScans_; }
  int bScans() const { return bScans_; }
  double widthMm() const { return widthMm_; }
  double lengthMm() const { return lengthMm_; }

  /// Position of an A-scan within its B-scan.
  double xMm(int aScan) const { return ((aScan + 0.5) / aScans_ - 0.5) * widthMm_; }

  /// Position of a B-scan.
  double yMm(int bScan) const { return ((bScan + 0.5) / bScans_ - 0.5) * lengthMm_; }

  bool operator==(const ScanPattern& other) const {
    return aScans_ == other.aScans_ && bScans_ == other.bScans_ && widthMm_ == other.widthMm_ &&
           lengthMm_ == other.lengthMm_;
  }

 private:
  int aScans_;
  int bScans_;
  double widthMm_;
  double lengthMm_;
};

}  // namespace oct::simulator
