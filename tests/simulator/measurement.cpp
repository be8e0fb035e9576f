#include "measurement.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator::test {
namespace {

/// Through three neighbouring samples at -1, 0 and 1. In decibels the device's response is a parabola near
/// its peak.
class Parabola {
 public:
  Parabola(double left, double middle, double right)
      : level_(middle), slope_(0.5 * (right - left)), curve_(0.5 * (left + right) - middle) {}

  double at(double x) const { return level_ + slope_ * x + curve_ * x * x; }
  double vertex() const { return -0.5 * slope_ / curve_; }

 private:
  double level_;
  double slope_;
  double curve_;
};

}  // namespace

void UniformPhantom::describe(double, double, double, DepthProfile& profile) const {
  std::fill(profile.scattering.begin(), profile.scattering.end(), scattering_);
}

float Volume::at(int depth, int aScan, int bScan) const {
  return data_->samples()[depth + static_cast<std::size_t>(depths()) * (aScan + aScans() * bScan)];
}

double Volume::peak(int aScan, int bScan) const {
  int top = 1;
  for (int depth = 2; depth < depths() - 1; ++depth)
    if (at(depth, aScan, bScan) > at(top, aScan, bScan)) top = depth;
  const Parabola parabola(at(top - 1, aScan, bScan), at(top, aScan, bScan), at(top + 1, aScan, bScan));
  return top + parabola.vertex();
}

double Volume::peakWidth(int aScan, int bScan) const {
  const double place = peak(aScan, bScan);
  const int top = static_cast<int>(std::lround(place));
  const Parabola parabola(at(top - 1, aScan, bScan), at(top, aScan, bScan), at(top + 1, aScan, bScan));
  const double half = parabola.at(place - top) - 10.0 * std::log10(2.0);
  const auto crossing = [&](int step) {
    int inside = top;
    while (at(inside + step, aScan, bScan) > half) inside += step;
    const Parabola flank(at(inside - step, aScan, bScan), at(inside, aScan, bScan),
                         at(inside + step, aScan, bScan));
    double away = -0.5;  // the peak itself may lie half a sample to the other side
    while (away < 1.0 && flank.at(away) > half) away += 0.001;
    return inside + step * away;
  };
  return crossing(1) - crossing(-1);
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

Volume process(const Calibration& calibration, const RawData& raw) {
  auto data = std::make_shared<Data>();
  Processing processing(calibration);
  processing.setOutput(data);
  processing.execute(raw);
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
