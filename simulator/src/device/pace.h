// When volumes are measured.
#pragma once

#include <chrono>
#include <cstdint>

namespace oct::simulator {

// How fast a device measures.
struct Pace {
  double a_scans_per_second = 100e3;
  bool is_real_time = false;  // otherwise time passes as fast as volumes can be computed

  // Throws std::invalid_argument unless the rate is finite and above zero.
  void check() const;
};

// The time table of one measurement: volume after volume without a gap.
class PacedMeasurement {
 public:
  using Clock = std::chrono::steady_clock;

  // first_volume: number of the volume that begins now
  PacedMeasurement(const Pace& pace, int a_scans, std::uint64_t first_volume, Clock::time_point now);

  const Pace& pace() const { return pace_; }

  // When a volume begins on the phantom's clock, which starts with volume 0.
  double start_seconds(std::uint64_t volume) const { return static_cast<double>(volume) * volume_seconds_; }

  // The volume to be read next. In real time a volume that nobody fetched while the next was measured is
  // lost, as with a camera whose buffer is overwritten.
  // earliest: the first volume that was not read yet
  std::uint64_t next(std::uint64_t earliest, Clock::time_point now) const;

  // When all A-scans of a volume have been measured.
  Clock::time_point ready(std::uint64_t volume) const;

 private:
  Pace pace_;
  double volume_seconds_;
  std::uint64_t first_volume_;
  Clock::time_point start_;
};

}  // namespace oct::simulator
