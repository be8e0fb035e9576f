#include "data/figure/scale.h"

#include <algorithm>
#include <cmath>
#include <iomanip>
#include <sstream>

namespace oct::app {

double round_below(double number) {
  // Powers of ten below 1 are no binary fractions: what is a round number already must not become the one below.
  const double just_above = number * (1 + 1e-9);
  const double power = std::pow(10.0, std::floor(std::log10(just_above)));
  for (const double step : {5.0, 2.0}) {
    if (step * power <= just_above) return step * power;
  }
  return power;
}

std::vector<double> round_numbers(double lower, double upper) {
  const double length = upper - lower;
  const double step = round_below(length / 3.0);
  std::vector<double> numbers;
  const double first = std::ceil(lower / step - 1e-6);
  const double last = std::floor(upper / step + 1e-6);
  // At the far end of what numbers can tell apart there may be no step left.
  for (double i = first; i <= last && numbers.size() < 16; ++i) numbers.push_back(i * step + 0.0);
  return numbers;
}

std::string number_text(double number, double step) {
  std::ostringstream text;
  const double largest = std::max(std::abs(number), step);
  if (largest >= 1e6 || step < 1e-6) {
    text << std::setprecision(6) << number;
  } else {
    const int digits = static_cast<int>(std::max(0.0, std::ceil(-std::log10(step) - 1e-9)));
    text << std::fixed << std::setprecision(digits) << number;
  }
  return text.str();
}

std::string length_text(double mm) {
  std::ostringstream text;
  text << std::setprecision(3);
  if (mm >= 1 - 1e-9) {
    text << mm << " mm";
  } else {
    text << mm * 1000 << " \xC2\xB5m";
  }
  return text.str();
}

}  // namespace oct::app
