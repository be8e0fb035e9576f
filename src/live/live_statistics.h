// What became of the volumes of a live renderer, and how fast they came to the screen.
#pragma once

#include <array>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace oct {

using LiveTime = std::chrono::steady_clock::time_point;

struct LiveCounts {
  std::uint64_t acquired = 0;
  std::uint64_t handed_over = 0;
  std::uint64_t shown = 0;
  std::uint64_t dropped_no_frame = 0;   // no buffer was free in time
  std::uint64_t dropped_withdrawn = 0;  // by a stop, or for another size or source
  std::uint64_t dropped_by_driver = 0;  // which lost the buffer, or failed to draw a frame with the volume
  std::uint64_t dropped_by_device = 0;  // as far as the device tells
};

// Plain data; whoever shares it between threads guards it.
class LiveStatistics {
 public:
  static constexpr std::size_t kept = 1000;  // volumes that latencies are taken from

  LiveCounts counts;

  void show(LiveTime processed, LiveTime shown);

  double volumes_per_second(LiveTime now) const;  // shown within the last second

  struct Latency {
    double median_ms = 0.0;
    double p99_ms = 0.0;
    double worst_ms = 0.0;
  };
  Latency latency() const;  // zeros before the first volume

 private:
  struct Shown {
    LiveTime when;
    float latency_ms = 0.0F;
  };
  std::size_t size() const { return counts.shown < kept ? static_cast<std::size_t>(counts.shown) : kept; }

  std::array<Shown, kept> last_;  // a ring
};

// Volumes per second by the wall clock, from the time since the last call of any renderer of this process, in
// whole milliseconds: infinite for less than one.
double measure_upload_rate();

}  // namespace oct
