#include "device/analog_input.h"

#include "base/noise.h"

#include <algorithm>
#include <cmath>

namespace oct::simulator {
namespace {

constexpr double kNoiseVolts = 0.01;

/// Size of the glowing spots.
constexpr double kSpotMm = 0.5;

/// A steep rise and a slow fall.
double pulse(double beats) {
  const double part = beats - std::floor(beats);
  return part < 0.15 ? part / 0.15 : std::exp(-4.0 * (part - 0.15));
}

}  // namespace

AnalogInput::AnalogInput(std::uint64_t seed) : seed_(mix(seed, 0xa4a)) {}

void AnalogInput::read(const Exposure& exposure, Data& data) const {
  const auto& pattern = exposure.pattern;
  data.resize({kChannels, pattern.aScans(), pattern.bScans()}, {0.0, pattern.widthMm(), pattern.lengthMm()});
  FastRandom random(mix(mix(seed_, 1), exposure.volume));
  const auto noise = [&] { return kNoiseVolts * signedUnit(random()); };
  float* sample = data.samples().data();
  for (int aScan = 0; aScan < pattern.aScans() * pattern.bScans(); ++aScan) {
    const auto place = exposure.place(aScan);
    const double glow = smoothNoise(seed_, place.xMm / kSpotMm, place.yMm / kSpotMm);
    const double seconds = exposure.startSeconds + aScan * exposure.aScanSeconds;
    *sample++ = static_cast<float>(std::clamp(0.5 + 0.5 * glow, 0.0, 1.0) + noise());
    *sample++ = static_cast<float>(pulse(kPulseRate * seconds) + noise());
  }
}

}  // namespace oct::simulator
