#include "polarization_mode.h"

#include <array>

#include "failure.h"

namespace oct::app {
namespace {

constexpr std::array kNames{"intensity", "retardation", "optic-axis", "dopu",   "q",
                            "u",         "v",           "sensor0",    "sensor1"};

}  // namespace

std::string polarizationModeNames() {
  std::string names;
  for (const char* const name : kNames) {
    if (!names.empty()) names += '|';
    names += name;
  }
  return names;
}

PolarizationMode parsePolarizationMode(const std::string& text) {
  for (std::size_t i = 0; i < kNames.size(); ++i) {
    if (text == kNames[i] || text == std::to_string(i)) return static_cast<PolarizationMode>(i);
  }
  throw badCommandLine("--ps: '" + text + "' is neither a number from 0 to 8 nor one of " +
                       polarizationModeNames());
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
