#include "signals/resampler.h"

#include <algorithm>
#include <cmath>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

// Shape of the Kaiser window: a balance of a short transition band and about -50 dB of ghosts.
constexpr double beta = 4.8;

double windowed_sinc(double distance, double half_width) {
  const double relative = distance / half_width;
  if (std::abs(relative) >= 1.0) return 0.0;
  const double angle = std::numbers::pi * distance;
  const double sinc = std::abs(angle) < 1e-9 ? 1.0 : std::sin(angle) / angle;
  return sinc * std::cyl_bessel_i(0.0, beta * std::sqrt(1.0 - relative * relative));
}

}  // namespace

Resampler::Resampler(int input_length, const std::vector<double>& positions) {
  if (input_length < tap_count) throw std::invalid_argument("The signal is too short to be resampled. ");
  taps_.reserve(positions.size());
  for (const double position : positions) {
    if (!(position >= 0.0 && position <= input_length - 1))
      throw std::invalid_argument("A resampling position lies outside the signal. ");
    const int ideal = static_cast<int>(std::floor(position)) - tap_count / 2 + 1;
    Taps taps{std::clamp(ideal, 0, input_length - tap_count), {}};
    double whole = 0.0;
    for (int tap = 0; tap < tap_count; ++tap) whole += windowed_sinc(position - (ideal + tap), tap_count / 2);
    for (int tap = 0; tap < tap_count; ++tap)
      taps.weights[tap] =
          static_cast<float>(windowed_sinc(position - (taps.first + tap), tap_count / 2) / whole);
    taps_.push_back(taps);
  }
}

std::vector<double> invert_positions(const std::vector<double>& rising) {
  const int size = static_cast<int>(rising.size());
  std::vector<double> places(size);
  int left = 0;
  for (int value = 0; value < size; ++value) {
    while (left < size - 2 && rising[left + 1] < value) ++left;
    const double step = rising[left + 1] - rising[left];
    if (!(step > 0.0)) throw std::invalid_argument("The wavenumber positions do not rise. ");
    places[value] = std::clamp(left + (value - rising[left]) / step, 0.0, size - 1.0);
  }
  return places;
}

std::vector<double> read_linear(const std::vector<double>& values, const std::vector<double>& places) {
  std::vector<double> result;
  result.reserve(places.size());
  for (const double place : places) {
    const auto left = std::min(static_cast<std::size_t>(place), values.size() - 2);
    result.push_back(std::lerp(values[left], values[left + 1], place - static_cast<double>(left)));
  }
  return result;
}

}  // namespace oct::simulator
