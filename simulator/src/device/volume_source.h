/// @file
/// Where a device's volumes come from.
#pragma once

#include "base/data.h"
#include "device/motion.h"
#include "device/scan_pattern.h"
#include "processing/calibration.h"

#include <cstdint>
#include <functional>

namespace oct::simulator {

/// One volume that shall be measured.
struct Exposure {
  ScanPattern pattern;
  std::uint64_t volume = 0;  ///< number of the volume; decides about its noise
  int camera = 0;
  Motion motion;
  double startSeconds = 0.0;  ///< when its first A-scan is measured
  double aScanSeconds = 0.0;  ///< time from A-scan to A-scan
  int workers = 0;            ///< number of threads, 0 for one per core; the volume does not depend on it
  std::function<bool()> givenUp = [] {
    return false;
  };  ///< asked now and then by all threads; the raw data is then left incomplete

  /// Where the beam meets the phantom.
  BeamPlace place(int aScan) const {
    const int row = pattern.aScans();
    return motion.place(pattern.xMm(aScan % row), pattern.yMm(aScan / row),
                        startSeconds + aScan * aScanSeconds);
  }
};

/// Gives volume after volume. Used by one thread at a time.
class VolumeSource {
 public:
  virtual ~VolumeSource() = default;

  virtual int spectrumLength() const = 0;
  virtual double depthRangeMm() const = 0;
  virtual int cameras() const = 0;
  virtual Calibration calibration() const = 0;

  /// The pattern that is really measured when this one was asked for.
  virtual ScanPattern effectivePattern(const ScanPattern& pattern) const { return pattern; }

  /// What the volumes show of a motion that was asked for.
  virtual Motion effectiveMotion(const Motion& motion) const { return motion; }

  /// @param raw receives the volume
  virtual void expose(const Exposure& exposure, RawData& raw) = 0;
};

}  // namespace oct::simulator
