// What a polarization-sensitive view shows.
#pragma once

#include <optional>
#include <span>

#include "data/samples.h"

namespace oct::app {

// Numbers as selectOnlineDataSource_PS() counts.
enum class PolarizationMode {
  Intensity,
  Retardation,
  OpticAxis,
  Dopu,
  StokesQ,
  StokesU,
  StokesV,
  Sensor0,
  Sensor1
};

// "intensity", "retardation", ... in the order of their numbers.
std::span<const char* const> polarizationModeNames();

// The values that the quantity can take; none for intensities.
std::optional<ValueRange> naturalRange(PolarizationMode mode);

}  // namespace oct::app
