#include "scene/polarization_mode.h"

#include <array>

namespace oct::app {
namespace {

constexpr std::array kNames{"intensity", "retardation", "optic-axis", "dopu",   "q",
                            "u",         "v",           "sensor0",    "sensor1"};

}  // namespace

std::span<const char* const> polarizationModeNames() {
  return kNames;
}

std::optional<ValueRange> naturalRange(PolarizationMode mode) {
  switch (mode) {
    case PolarizationMode::Retardation:
      return ValueRange{0, 90};
    case PolarizationMode::OpticAxis:
      return ValueRange{0, 180};
    case PolarizationMode::Dopu:
      return ValueRange{0, 1};
    case PolarizationMode::StokesQ:
    case PolarizationMode::StokesU:
    case PolarizationMode::StokesV:
      return ValueRange{-1, 1};
    default:
      return std::nullopt;
  }
}

}  // namespace oct::app
