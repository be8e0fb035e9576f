// A volume that a device has measured, with its time.
#pragma once

#include <cstdint>

#include "data/volume.h"

namespace oct::app {

struct LiveVolume {
  VolumeData data;
  std::uint64_t index = 0;        // counts the volumes since the start
  std::uint64_t nanoseconds = 0;  // of a clock that begins anywhere
};

}  // namespace oct::app
