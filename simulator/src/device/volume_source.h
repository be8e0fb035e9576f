// Where a device's volumes come from.
#pragma once

#include <cstdint>
#include <functional>

#include "base/data.h"
#include "device/motion.h"
#include "device/scan_pattern.h"
#include "processing/calibration.h"

namespace oct::simulator {

// One volume that shall be measured.
struct Exposure {
  ScanPattern pattern;
  std::uint64_t volume = 0;  // number of the volume; decides about its noise
  int camera = 0;
  Motion motion;
  double start_seconds = 0.0;   // when its first A-scan is measured
  double a_scan_seconds = 0.0;  // time from A-scan to A-scan
  int workers = 0;              // number of threads, 0 for one per core; the volume does not depend on it
  std::function<bool()> given_up = [] {
    return false;
  };  // asked now and then by all threads; the raw data is then left incomplete

  // Where the beam meets the phantom.
  BeamPlace place(int a_scan) const {
    const int row = pattern.a_scans();
    return motion.place(pattern.x_mm(a_scan % row), pattern.y_mm(a_scan / row),
                        start_seconds + a_scan * a_scan_seconds);
  }
};

// Gives volume after volume. Used by one thread at a time.
class VolumeSource {
 public:
  virtual ~VolumeSource() = default;

  virtual int spectrum_length() const = 0;
  virtual double depth_range_mm() const = 0;
  virtual int cameras() const = 0;
  virtual Calibration calibration() const = 0;

  // The pattern that is really measured when this one was asked for.
  virtual ScanPattern effective_pattern(const ScanPattern& pattern) const { return pattern; }

  // What the volumes show of a motion that was asked for.
  virtual Motion effective_motion(const Motion& motion) const { return motion; }

  // raw: receives the volume
  virtual void expose(const Exposure& exposure, RawData& raw) = 0;
};

}  // namespace oct::simulator
