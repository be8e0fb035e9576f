#include "simulator/measurement.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator::test {

void UniformPhantom::describe(double, double, double, DepthProfile& profile) const {
  std::fill(profile.scattering.begin(), profile.scattering.end(), scattering_);
}

float Volume::at(int depth, int a_scan, int b_scan) const {
  return data_->samples()[depth + static_cast<std::size_t>(depths()) * (a_scan + a_scans() * b_scan)];
}

namespace {

int highest_depth(const Volume& volume, int a_scan) {
  int top = 1;
  for (int depth = 2; depth < volume.depths() - 1; ++depth)
    if (volume.at(depth, a_scan) > volume.at(top, a_scan)) top = depth;
  return top;
}

}  // namespace

// In decibels the device's response is a parabola near its peak.
double Volume::peak(int a_scan) const {
  const int top = highest_depth(*this, a_scan);
  const double slope = 0.5 * (at(top + 1, a_scan) - at(top - 1, a_scan));
  return top - 0.5 * slope / (0.5 * (at(top - 1, a_scan) + at(top + 1, a_scan)) - at(top, a_scan));
}

double Volume::peak_width(int a_scan) const {
  const int top = highest_depth(*this, a_scan);
  const double slope = 0.5 * (at(top + 1, a_scan) - at(top - 1, a_scan));
  const double height = at(top, a_scan) + 0.5 * slope * (peak(a_scan) - top);
  double sum = 0.0;
  for (int depth = std::max(top - 8, 0); depth <= std::min(top + 8, depths() - 1); ++depth)
    sum += std::pow(10.0, 0.1 * (at(depth, a_scan) - height));
  return sum;
}

double Volume::mean_power(int first_depth, int last_depth) const {
  double sum = 0.0;
  int count = 0;
  for (int b_scan = 0; b_scan < data_->sizes()[2]; ++b_scan)
    for (int a_scan = 0; a_scan < a_scans(); ++a_scan)
      for (int depth = first_depth; depth <= last_depth; ++depth, ++count)
        sum += std::pow(10.0, 0.1 * at(depth, a_scan, b_scan));
  return sum / count;
}

void Correlation::add(double a, double b) {
  ++count_;
  a_ += a;
  b_ += b;
  aa_ += a * a;
  bb_ += b * b;
  ab_ += a * b;
}

double Correlation::value() const {
  return (count_ * ab_ - a_ * b_) / std::sqrt((count_ * aa_ - a_ * a_) * (count_ * bb_ - b_ * b_));
}

Volume process(const Calibration& calibration, const RawData& raw) {
  auto data = std::make_shared<Data>();
  Processing processing(calibration);
  processing.set_output(data);
  processing.execute(raw);
  return Volume(data);
}

Volume Sensors::compute(PolarizationProcessing::Quantity quantity) {
  auto data = std::make_shared<Data>();
  processing.set_output(quantity, data);
  processing.execute(fields[0], fields[1]);
  return Volume(data);
}

Volume measure(Device& device, const ScanPattern& pattern) {
  RawData raw;
  device.start(pattern, 0);
  device.acquire(raw, 0);
  device.stop();
  return process(device.calibration(), raw);
}

Spectrometer standard_spectrometer() {
  return Spectrometer(2048, 1300.0, 3.6);
}

}  // namespace oct::simulator::test
