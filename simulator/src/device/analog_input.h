// The signals at the device's analog input.
#pragma once

#include <cstdint>

#include "base/data.h"
#include "device/volume_source.h"

namespace oct::simulator {

// Two channels that are sampled once per A-scan. The first is a light detector that sees glowing spots of
// the phantom through the scanner and so moves with it; the second is a pulse.
class AnalogInput {
 public:
  static constexpr int channels = 2;

  // Beats per second of the pulse.
  static constexpr double pulse_rate = 1.2;

  explicit AnalogInput(std::uint64_t seed);

  // data: receives volts, 0 to 1 with a little noise; sizes are channels, A-scans, B-scans
  void read(const Exposure& exposure, Data& data) const;

 private:
  std::uint64_t seed_;
};

}  // namespace oct::simulator
