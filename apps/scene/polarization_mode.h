// What a polarization-sensitive view shows.
#pragma once

#include <optional>
#include <span>

#include "data/samples.h"

namespace oct::app {

// Numbers as selectOnlineDataSource_PS() counts.
enum class PolarizationMode {
  intensity,
  retardation,
  optic_axis,
  dopu,
  stokes_q,
  stokes_u,
  stokes_v,
  sensor0,
  sensor1
};

// "intensity", "retardation", ... in the order of their numbers.
std::span<const char* const> polarization_mode_names();

// The values that the quantity can take; none for intensities.
std::optional<ValueRange> natural_range(PolarizationMode mode);

}  // namespace oct::app
