// Measures and processes a phantom in one go.
#pragma once

#include <array>
#include <memory>
#include <vector>

#include "base/data.h"
#include "device/device.h"
#include "device/scan_pattern.h"
#include "phantoms/phantom.h"
#include "processing/calibration.h"
#include "processing/polarization_processing.h"
#include "processing/processing.h"

namespace oct::simulator::test {

// A phantom whose scattering is the same everywhere.
class UniformPhantom : public Phantom {
 public:
  explicit UniformPhantom(float scattering) : scattering_(scattering) {}
  void describe(double, double, double, DepthProfile& profile) const override;

 private:
  float scattering_;
};

// A processed volume with the access tests need.
class Volume {
 public:
  explicit Volume(const std::shared_ptr<Data>& data) : data_(data) {}

  Data& data() const { return *data_; }
  int depths() const { return data_->sizes()[0]; }
  int a_scans() const { return data_->sizes()[1]; }
  int b_scans() const { return data_->sizes()[2]; }
  const std::vector<float>& samples() const { return data_->samples(); }
  double cell_mm() const { return data_->ranges_mm()[0] / depths(); }
  float at(int depth, int a_scan, int b_scan = 0) const;

  // The A-scan's brightest place, between the samples, in samples.
  double peak(int a_scan) const;

  // Power of the A-scan's peak and its side lobes relative to its highest: a width, in samples.
  double peak_width(int a_scan) const;

  // Mean power over all A-scans in a range of depths.
  double mean_power(int first_depth, int last_depth) const;

 private:
  std::shared_ptr<Data> data_;
};

// How much two sequences have in common, 1 at the most.
class Correlation {
 public:
  void add(double a, double b);
  double value() const;

 private:
  double count_ = 0.0, a_ = 0.0, b_ = 0.0, aa_ = 0.0, bb_ = 0.0, ab_ = 0.0;
};

Volume process(const Calibration& calibration, const RawData& raw);

// Measures one volume and processes it as the device's own processing would.
Volume measure(Device& device, const ScanPattern& pattern);

// Fields of both sensors with a polarization processing.
struct Sensors {
  std::array<ComplexData, 2> fields;
  PolarizationProcessing processing;

  Volume compute(PolarizationProcessing::Quantity quantity);
};

// The spectrometer most tests use: 2048 pixels, 1300 nm, 3.6 mm.
Spectrometer standard_spectrometer();

}  // namespace oct::simulator::test
