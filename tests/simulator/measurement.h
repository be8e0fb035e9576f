// Measures and processes a phantom in one go.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <memory>
#include <numeric>
#include <vector>

#include "base/data.h"
#include "device/device.h"
#include "device/scan_pattern.h"
#include "phantoms/phantom.h"
#include "processing/calibration.h"
#include "processing/polarization_processing.h"
#include "processing/processing.h"

namespace oct::simulator::test {

// The spectrometer most tests use.
inline const Spectrometer standard_spectrometer(2048, 1300.0, 3.6);

// A phantom whose scattering is the same everywhere.
struct UniformPhantom : Phantom {
  explicit UniformPhantom(float everywhere) : scattering(everywhere) {}
  void describe(double, double, double, DepthProfile& profile) const override {
    std::ranges::fill(profile.scattering, scattering);
  }
  const float scattering;
};

inline double power_of(double decibels) {
  return std::pow(10.0, 0.1 * decibels);
}

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
  float at(int depth, int a_scan, int b_scan = 0) const {
    return samples()[depth + static_cast<std::size_t>(depths()) * (a_scan + a_scans() * b_scan)];
  }
  double power(int depth, int a_scan, int b_scan = 0) const { return power_of(at(depth, a_scan, b_scan)); }

  // The A-scan's brightest place, between the samples, in samples. In decibels the device's response is a
  // parabola near its peak.
  double peak(int a_scan) const {
    const int top = highest_depth(a_scan);
    return top - slope(top, a_scan) / (at(top - 1, a_scan) + at(top + 1, a_scan) - 2.0 * at(top, a_scan));
  }

  // Power of the A-scan's peak and its side lobes relative to its highest: a width, in samples.
  double peak_width(int a_scan) const {
    const int top = highest_depth(a_scan);
    const double height = at(top, a_scan) + 0.5 * slope(top, a_scan) * (peak(a_scan) - top);
    double sum = 0.0;
    for (int depth = std::max(top - 8, 0); depth <= std::min(top + 8, depths() - 1); ++depth)
      sum += power_of(at(depth, a_scan) - height);
    return sum;
  }

  // Mean power over all A-scans in a range of depths.
  double mean_power(int first_depth, int last_depth) const {
    double sum = 0.0;
    for (int b_scan = 0; b_scan < b_scans(); ++b_scan)
      for (int a_scan = 0; a_scan < a_scans(); ++a_scan)
        for (int depth = first_depth; depth <= last_depth; ++depth) sum += power(depth, a_scan, b_scan);
    return sum / ((last_depth - first_depth + 1) * a_scans() * b_scans());
  }

 private:
  int highest_depth(int a_scan) const {
    const auto first = samples().begin() + std::ptrdiff_t{depths()} * a_scan;
    return static_cast<int>(std::max_element(first + 1, first + depths() - 1) - first);
  }
  double slope(int depth, int a_scan) const { return 0.5 * (at(depth + 1, a_scan) - at(depth - 1, a_scan)); }

  std::shared_ptr<Data> data_;
};

// How much two sequences have in common, 1 at the most.
inline double correlation_of(const std::vector<double>& a, const std::vector<double>& b) {
  const auto sum = [](auto& x, auto& y) { return std::inner_product(x.begin(), x.end(), y.begin(), 0.0); };
  const std::vector<double> ones(a.size(), 1.0);
  const double count = sum(ones, ones), sum_a = sum(a, ones), sum_b = sum(b, ones);
  return (count * sum(a, b) - sum_a * sum_b) /
         std::sqrt((count * sum(a, a) - sum_a * sum_a) * (count * sum(b, b) - sum_b * sum_b));
}

inline Volume process(const Calibration& calibration, const RawData& raw) {
  auto data = std::make_shared<Data>();
  Processing processing(calibration);
  processing.set_output(data);
  processing.execute(raw);
  return Volume(data);
}

inline RawData acquire(Device& device, const ScanPattern& pattern) {
  RawData raw;
  device.start(pattern, 0);
  device.acquire(raw, 0);
  device.stop();
  return raw;
}

// Measures one volume and processes it as the device's own processing would.
inline Volume measure(Device& device, const ScanPattern& pattern) {
  return process(device.calibration(), acquire(device, pattern));
}

// Fields and pictures of both sensors with a polarization processing.
struct Sensors {
  std::array<ComplexData, 2> fields;
  std::array<Data, 2> pictures;
  PolarizationProcessing processing;

  void measure(Device& device, const ScanPattern& pattern, int workers = 0) {
    device.start(pattern, 0);
    for (int sensor = 0; sensor < 2; ++sensor) {
      RawData raw;
      const auto field = std::make_shared<ComplexData>();
      const auto picture = std::make_shared<Data>();
      Processing sensors_processing(device.calibration());
      sensors_processing.set_output(field);
      sensors_processing.set_output(picture);
      device.acquire(raw, sensor, workers);
      sensors_processing.execute(raw, workers);
      fields[sensor] = *field;
      pictures[sensor] = *picture;
    }
  }

  Volume compute(PolarizationProcessing::Quantity quantity, int workers = 0) {
    auto data = std::make_shared<Data>();
    processing.set_output(quantity, data);
    processing.execute(fields[0], fields[1], workers);
    return Volume(data);
  }
};

}  // namespace oct::simulator::test
