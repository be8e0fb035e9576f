/// @file
/// Volumes of a recording.
#pragma once

#include "base/recording.h"
#include "device/volume_source.h"

#include <memory>

namespace oct::simulator {

/// Plays recorded volumes, one after the other and from the first again, whatever scan pattern was asked for.
/// Raw data only refers to them, so that a volume costs the processing's one copy.
class PlaybackSource : public VolumeSource {
 public:
  /// Throws std::invalid_argument unless the extents are finite and above 0.
  PlaybackSource(std::shared_ptr<const Recording> recording, double depthMm, double widthMm, double lengthMm);

  int spectrumLength() const override { return 2 * recording_->sizes()[0]; }
  double depthRangeMm() const override { return depthMm_; }
  int cameras() const override { return 1; }
  Calibration calibration() const override;
  ScanPattern effectivePattern(const ScanPattern&) const override { return pattern_; }
  Motion effectiveMotion(const Motion&) const override { return {}; }
  void expose(const Exposure& exposure, RawData& raw) override;

 private:
  std::shared_ptr<const Recording> recording_;
  double depthMm_;
  ScanPattern pattern_;
};

}  // namespace oct::simulator
