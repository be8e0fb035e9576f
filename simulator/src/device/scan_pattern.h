// Where a volume is measured.
#pragma once

#include "base/handle_table.h"

namespace oct::simulator {

// A grid of A-scans around lateral position (0, 0). Every A-scan stands for the middle of its own piece of
// the field, so that the outermost lie half a distance inside the edge.
class ScanPattern : public HandleObject {
 public:
  static constexpr const char* name = "scan pattern";

  ScanPattern(int a_scans, int b_scans, double width_mm, double length_mm);

  int a_scans() const { return a_scans_; }
  int b_scans() const { return b_scans_; }
  double width_mm() const { return width_mm_; }
  double length_mm() const { return length_mm_; }

  // Position of an A-scan within its B-scan.
  double x_mm(int a_scan) const { return ((a_scan + 0.5) / a_scans_ - 0.5) * width_mm_; }

  // Position of a B-scan.
  double y_mm(int b_scan) const { return ((b_scan + 0.5) / b_scans_ - 0.5) * length_mm_; }

  bool operator==(const ScanPattern& other) const {
    return a_scans_ == other.a_scans_ && b_scans_ == other.b_scans_ && width_mm_ == other.width_mm_ &&
           length_mm_ == other.length_mm_;
  }

 private:
  int a_scans_;
  int b_scans_;
  double width_mm_;
  double length_mm_;
};

}  // namespace oct::simulator
