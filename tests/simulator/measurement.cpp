#include "measurement.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator::test {

void UniformPhantom::describe(double, double, double, DepthProfile& profile) const {
  std::fill(profile.scattering.begin(), profile.scattering.end(), scattering_);
}

float Volume::at(int depth, int aScan, int bScan) const {
  return data_->samples()[depth + static_cast<std::size_t>(depths()) * (aScan + aScans() * bScan)];
}

namespace {

int highestDepth(const Volume& volume, int aScan) {
  int top = 1;
  for (int depth = 2; depth < volume.depths() - 1; ++depth)
    if (volume.at(depth, aScan) > volume.at(top, aScan)) top = depth;
  return top;
}

}  // namespace

/// In decibels the device's response is a parabola near its peak.
double Volume::peak(int aScan) const {
  const int top = highestDepth(*this, aScan);
  const double slope = 0.5 * (at(top + 1, aScan) - at(top - 1, aScan));
  return top - 0.5 * slope / (0.5 * (at(top - 1, aScan) + at(top + 1, aScan)) - at(top, aScan));
}

double Volume::peakWidth(int aScan) const {
  const int top = highestDepth(*this, aScan);
  const double slope = 0.5 * (at(top + 1, aScan) - at(top - 1, aScan));
  const double height = at(top, aScan) + 0.5 * slope * (peak(aScan) - top);
  double sum = 0.0;
  for (int depth = std::max(top - 8, 0); depth <= std::min(top + 8, depths() - 1); ++depth)
    sum += std::pow(10.0, 0.1 * (at(depth, aScan) - height));
  return sum;
}

double Volume::meanPower(int firstDepth, int lastDepth) const {
  double sum = 0.0;
  int count = 0;
  for (int bScan = 0; bScan < data_->sizes()[2]; ++bScan)
    for (int aScan = 0; aScan < aScans(); ++aScan)
      for (int depth = firstDepth; depth <= lastDepth; ++depth, ++count)
        sum += std::pow(10.0, 0.1 * at(depth, aScan, bScan));
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
  processing.setOutput(data);
  processing.execute(raw);
  return Volume(data);
}

Volume Sensors::compute(PolarizationProcessing::Quantity quantity) {
  auto data = std::make_shared<Data>();
  processing.setOutput(quantity, data);
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

Spectrometer standardSpectrometer() {
  return Spectrometer(2048, 1300.0, 3.6);
}

}  // namespace oct::simulator::test
