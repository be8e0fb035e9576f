#include "device/pace.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace oct::simulator {
namespace {

// Keeps the time table within the range of the clock.
constexpr double longest_wait_seconds = 1e8;

}  // namespace

void Pace::check() const {
  if (!(a_scans_per_second > 0.0 && std::isfinite(a_scans_per_second)))
    throw std::invalid_argument("The A-scan rate must be above zero. ");
}

PacedMeasurement::PacedMeasurement(const Pace& pace, int a_scans, std::uint64_t first_volume,
                                   Clock::time_point now)
    : pace_(pace),
      volume_seconds_(a_scans / pace.a_scans_per_second),
      first_volume_(first_volume),
      start_(now) {}

std::uint64_t PacedMeasurement::next(std::uint64_t earliest, Clock::time_point now) const {
  if (!pace_.is_real_time) return earliest;
  const double elapsed = std::chrono::duration<double>(now - start_).count();
  return std::max(earliest, first_volume_ + static_cast<std::uint64_t>(elapsed / volume_seconds_));
}

PacedMeasurement::Clock::time_point PacedMeasurement::ready(std::uint64_t volume) const {
  if (!pace_.is_real_time) return start_;
  const double seconds = static_cast<double>(volume - first_volume_ + 1) * volume_seconds_;
  return start_ + std::chrono::duration_cast<Clock::duration>(
                      std::chrono::duration<double>(std::min(seconds, longest_wait_seconds)));
}

}  // namespace oct::simulator
