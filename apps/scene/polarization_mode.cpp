#include "scene/polarization_mode.h"

#include <array>

namespace oct::app {
namespace {

constexpr std::array mode_names{"intensity", "retardation", "optic-axis", "dopu",   "q",
                                "u",         "v",           "sensor0",    "sensor1"};

}  // namespace

std::span<const char* const> polarization_mode_names() {
  return mode_names;
}

std::optional<ValueRange> natural_range(PolarizationMode mode) {
  switch (mode) {
    case PolarizationMode::retardation:
      return ValueRange{0, 90};
    case PolarizationMode::optic_axis:
      return ValueRange{0, 180};
    case PolarizationMode::dopu:
      return ValueRange{0, 1};
    case PolarizationMode::stokes_q:
    case PolarizationMode::stokes_u:
    case PolarizationMode::stokes_v:
      return ValueRange{-1, 1};
    default:
      return std::nullopt;
  }
}

}  // namespace oct::app
