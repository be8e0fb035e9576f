/// @file
/// From camera readings to a picture in decibels.
#pragma once

#include "base/data.h"
#include "base/handle_table.h"
#include "processing/calibration.h"
#include "signals/resampler.h"

#include <atomic>
#include <complex>
#include <memory>
#include <vector>

namespace oct::simulator {

/// Processes whole volumes. The noise of one camera count per pixel gives about the same level for every
/// spectrum length, because the transform is scaled to keep the signal's energy.
class Processing : public HandleObject {
 public:
  static constexpr const char* kName = "processing";

  /// Throws std::invalid_argument if the sequences differ in length or the positions do not rise.
  explicit Processing(const Calibration& calibration);

  /// Outputs are not owned. If none is left when execute() is called, that fails.
  void setOutput(const std::shared_ptr<Data>& output) { output_ = output; }
  void setOutput(const std::shared_ptr<ComplexData>& output) { complexOutput_ = output; }

  int spectrumLength() const { return spectrumLength_; }

  /// Brightest reading of the reference arm as a part of the camera's range: in the last volume, before the
  /// first by the calibration.
  double referenceIntensity() const { return referenceIntensity_; }

  /// @param workers number of threads, 0 for one per core; the result does not depend on it
  void execute(const RawData& raw, int workers = 0);

 private:
  class Transformation;

  std::vector<float> backgrounds(const RawData& raw, int workers) const;

  int spectrumLength_;
  double depthRangeMm_;
  std::vector<float> background_;
  Resampler toEvenWavenumbers_;
  std::vector<std::complex<float>> weights_;
  std::weak_ptr<Data> output_;
  std::weak_ptr<ComplexData> complexOutput_;
  std::atomic<double> referenceIntensity_;
};

}  // namespace oct::simulator
