// Volumes of a recording.
#pragma once

#include <memory>

#include "base/recording.h"
#include "device/volume_source.h"

namespace oct::simulator {

// Plays recorded volumes, one after the other and from the first again, whatever scan pattern was asked for.
// Raw data only refers to them, so that a volume costs the processing's one copy.
class PlaybackSource : public VolumeSource {
 public:
  // Throws std::invalid_argument unless the extents are finite and above 0.
  PlaybackSource(std::shared_ptr<const Recording> recording, double depth_mm, double width_mm,
                 double length_mm);

  int spectrum_length() const override { return 2 * recording_->sizes()[0]; }
  double depth_range_mm() const override { return depth_mm_; }
  int cameras() const override { return 1; }
  Calibration calibration() const override;
  ScanPattern effective_pattern(const ScanPattern&) const override { return pattern_; }
  Motion effective_motion(const Motion&) const override { return {}; }
  void expose(const Exposure& exposure, RawData& raw) override;

 private:
  std::shared_ptr<const Recording> recording_;
  double depth_mm_;
  ScanPattern pattern_;
};

}  // namespace oct::simulator
