#include "data/arrays/length_unit.h"

#include <cmath>
#include <string>

namespace oct::app {
namespace {

struct Unit {
  std::string_view name;
  double mm;
};

// The letter for micro has two places in Unicode, one of which is a byte of Latin-1, and programs that write plain ASCII
// have ways around it.
constexpr Unit units[] = {{"mm", 1},         {"millimeter", 1},    {"millimetre", 1},
                          {"m", 1000},       {"meter", 1000},      {"metre", 1000},
                          {"cm", 10},        {"centimeter", 10},   {"centimetre", 10},
                          {"um", 1e-3},      {"\xC2\xB5m", 1e-3},  {"\xCE\xBCm", 1e-3},
                          {"\xB5m", 1e-3},   {"\\u00b5m", 1e-3},   {"&#181;m", 1e-3},
                          {"&#xb5;m", 1e-3}, {"&#956;m", 1e-3},    {"&#x3bc;m", 1e-3},
                          {"micron", 1e-3},  {"micrometer", 1e-3}, {"micrometre", 1e-3},
                          {"nm", 1e-6},      {"nanometer", 1e-6},  {"nanometre", 1e-6},
                          {"in", 25.4},      {"inch", 25.4}};

}  // namespace

std::optional<double> millimetres_of(std::string_view unit) {
  std::string name(unit);
  for (char& letter : name) {
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter - 'A' + 'a');
  }
  for (const Unit& known : units) {
    if (name == known.name || (known.name.size() > 2 && name == std::string(known.name) + 's'))
      return known.mm;
  }
  return std::nullopt;
}

double distance_mm(double distance, double unit_mm) {
  const double mm = std::abs(distance) * unit_mm;
  return mm >= 1e-6 && mm <= 15 ? mm : 0;
}

}  // namespace oct::app
