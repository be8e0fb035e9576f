// From camera readings to a picture in decibels.
#pragma once

#include <atomic>
#include <complex>
#include <memory>
#include <vector>

#include "base/data.h"
#include "base/handle_table.h"
#include "processing/calibration.h"
#include "signals/resampler.h"

namespace oct::simulator {

// Processes whole volumes. The noise of one camera count per pixel gives about the same level for every
// spectrum length, because the transform is scaled to keep the signal's energy.
class Processing : public HandleObject {
 public:
  static constexpr const char* name = "processing";

  // Throws std::invalid_argument if the sequences differ in length or the positions do not rise.
  explicit Processing(const Calibration& calibration);

  // Outputs are not owned. If none is left when execute() is called, that fails.
  void set_output(const std::shared_ptr<Data>& output) { output_ = output; }
  void set_output(const std::shared_ptr<ComplexData>& output) { complex_output_ = output; }

  int spectrum_length() const { return spectrum_length_; }

  // Brightest reading of the reference arm as a part of the camera's range: in the last volume, before the
  // first by the calibration.
  double reference_intensity() const { return reference_intensity_; }

  // workers: number of threads, 0 for one per core; the result does not depend on it
  void execute(const RawData& raw, int workers = 0);

 private:
  class Transformation;

  std::vector<float> backgrounds(const RawData& raw, int workers) const;

  int spectrum_length_;
  double depth_range_mm_;
  std::vector<float> background_;
  Resampler to_even_wavenumbers_;
  std::vector<std::complex<float>> weights_;
  std::weak_ptr<Data> output_;
  std::weak_ptr<ComplexData> complex_output_;
  std::atomic<double> reference_intensity_;
};

}  // namespace oct::simulator
