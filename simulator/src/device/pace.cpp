#include "device/pace.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace oct::simulator {
namespace {

/// Keeps the time table within the range of the clock.
constexpr double kLongestWaitSeconds = 1e8;

}  // namespace

void Pace::check() const {
  if (!(aScansPerSecond > 0.0 && std::isfinite(aScansPerSecond)))
    throw std::invalid_argument("The A-scan rate must be above zero. ");
}

PacedMeasurement::PacedMeasurement(const Pace& pace, int aScans, std::uint64_t firstVolume,
                                   Clock::time_point now)
    : pace_(pace), volumeSeconds_(aScans / pace.aScansPerSecond), firstVolume_(firstVolume), start_(now) {}

std::uint64_t PacedMeasurement::next(std::uint64_t earliest, Clock::time_point now) const {
  if (!pace_.isRealTime) return earliest;
  const double elapsed = std::chrono::duration<double>(now - start_).count();
  return std::max(earliest, firstVolume_ + static_cast<std::uint64_t>(elapsed / volumeSeconds_));
}

PacedMeasurement::Clock::time_point PacedMeasurement::ready(std::uint64_t volume) const {
  if (!pace_.isRealTime) return start_;
  const double seconds = static_cast<double>(volume - firstVolume_ + 1) * volumeSeconds_;
  return start_ + std::chrono::duration_cast<Clock::duration>(
                      std::chrono::duration<double>(std::min(seconds, kLongestWaitSeconds)));
}

}  // namespace oct::simulator
