// What a polarization-sensitive view shows.
#pragma once

#include <optional>
#include <string>

#include "samples.h"

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

// "intensity|retardation|..." for help.
std::string polarizationModeNames();

// A name or a number from 0 to 8; throws a command line failure.
PolarizationMode parsePolarizationMode(const std::string& text);

// The values that the quantity can take; none for intensities.
std::optional<ValueRange> naturalRange(PolarizationMode mode);

}  // namespace oct::app
