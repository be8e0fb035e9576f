#include "device/analog_input.h"

#include <algorithm>
#include <cmath>

#include "base/noise.h"

namespace oct::simulator {
namespace {

constexpr double noise_volts = 0.01;

// Size of the glowing spots.
constexpr double spot_mm = 0.5;

// A steep rise and a slow fall.
double pulse(double beats) {
  const double part = beats - std::floor(beats);
  return part < 0.15 ? part / 0.15 : std::exp(-4.0 * (part - 0.15));
}

}  // namespace

AnalogInput::AnalogInput(std::uint64_t seed) : seed_(mix(seed, 0xA4A)) {}

void AnalogInput::read(const Exposure& exposure, Data& data) const {
  const auto& pattern = exposure.pattern;
  data.resize({channels, pattern.a_scans(), pattern.b_scans()},
              {0.0, pattern.width_mm(), pattern.length_mm()});
  FastRandom random(mix(mix(seed_, 1), exposure.volume));
  const auto noise = [&] { return noise_volts * signed_unit(random()); };
  float* sample = data.samples().data();
  for (int a_scan = 0; a_scan < pattern.a_scans() * pattern.b_scans(); ++a_scan) {
    const auto place = exposure.place(a_scan);
    const double glow = smooth_noise(seed_, place.x_mm / spot_mm, place.y_mm / spot_mm);
    const double seconds = exposure.start_seconds + a_scan * exposure.a_scan_seconds;
    *sample++ = static_cast<float>(std::clamp(0.5 + 0.5 * glow, 0.0, 1.0) + noise());
    *sample++ = static_cast<float>(pulse(pulse_rate * seconds) + noise());
  }
}

}  // namespace oct::simulator
