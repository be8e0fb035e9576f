/// @file
/// Measures and processes a phantom in one go.
#pragma once

#include "base/data.h"
#include "device/device.h"
#include "device/scan_pattern.h"
#include "phantoms/phantom.h"
#include "processing/calibration.h"
#include "processing/processing.h"

#include <memory>
#include <vector>

namespace oct::simulator::test {

/// A phantom whose scattering is the same everywhere.
class UniformPhantom : public Phantom {
 public:
  explicit UniformPhantom(float scattering) : scattering_(scattering) {}
  void describe(double, double, double, DepthProfile& profile) const override;

 private:
  float scattering_;
};

/// A processed volume with the access tests need.
class Volume {
 public:
  explicit Volume(const std::shared_ptr<Data>& data) : data_(data) {}

  Data& data() const { return *data_; }
  int depths() const { return data_->sizes()[0]; }
  int aScans() const { return data_->sizes()[1]; }
  int bScans() const { return data_->sizes()[2]; }
  const std::vector<float>& samples() const { return data_->samples(); }
  double cellMm() const { return data_->rangesMm()[0] / depths(); }
  float at(int depth, int aScan, int bScan = 0) const;

  /// The A-scan's brightest place, between the samples, in samples.
  double peak(int aScan, int bScan = 0) const;

  /// Full width of the A-scan's peak at half its power, in samples.
  double peakWidth(int aScan, int bScan = 0) const;

  /// Mean power over all A-scans in a range of depths.
  double meanPower(int firstDepth, int lastDepth) const;

 private:
  std::shared_ptr<Data> data_;
};

Volume process(const Calibration& calibration, const RawData& raw);

/// Measures one volume and processes it as the device's own processing would.
Volume measure(Device& device, const ScanPattern& pattern);

/// The spectrometer most tests use: 2048 pixels, 1300 nm, 3.6 mm.
Spectrometer standardSpectrometer();

}  // namespace oct::simulator::test
