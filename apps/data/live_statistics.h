// What a live view measures of itself.
#pragma once

#include <chrono>
#include <deque>
#include <mutex>
#include <optional>
#include <vector>

namespace oct::app {

struct LiveReport {
  double seconds = 0;  // from the end of the frame that showed the first volume on
  unsigned acquired = 0;
  unsigned shown = 0;
  unsigned dropped = 0;
  unsigned frames = 0;
  double worst_frame = 0;                // milliseconds
  std::vector<float> latencies;          // milliseconds, ascending
  float latency_at(double share) const;  // 0 without any
};

// Tells which volume a frame shows: they are shown in the order in which they were acquired, and the count of
// dropped ones has risen by the time the next is acquired. A volume counts as acquired when the source
// announces its reference intensity, which it does after the processing and before the hand-over.
class LiveStatistics {
 public:
  using Time = std::chrono::steady_clock::time_point;

  // On the acquisition thread. The source does not announce the first volume of a measurement.
  // dropped: volumes dropped up to now.
  void acquired(Time when, unsigned dropped);

  // On the rendering thread, for each frame when its pixels are there.
  // shown: volumes taken to the graphics card up to and with this frame.
  void frame(Time start, Time end, unsigned shown);

  // When the first volume was shown; none before.
  std::optional<Time> begin() const;

  // What happened since then. dropped: volumes dropped up to now.
  LiveReport report(Time now, unsigned dropped) const;

 private:
  mutable std::mutex mutex_;
  std::deque<std::optional<Time>> waiting_{std::nullopt};  // acquired, neither shown nor known to be dropped
  std::optional<Time> begin_;
  unsigned dropped_seen_ = 0;
  unsigned dropped_before_ = 0;
  unsigned shown_seen_ = 0;
  LiveReport report_;
};

}  // namespace oct::app
