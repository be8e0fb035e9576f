#include "data/live_statistics.h"

#include <algorithm>
#include <cmath>

namespace oct::app {
namespace {

double milliseconds(std::chrono::steady_clock::duration duration) {
  return std::chrono::duration<double, std::milli>(duration).count();
}

}  // namespace

float LiveReport::latency_at(double share) const {
  if (latencies.empty()) return 0;
  const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(latencies.size())));
  return latencies[std::clamp<std::size_t>(rank, 1, latencies.size()) - 1];
}

void LiveStatistics::acquired(Time when, unsigned dropped) {
  const std::lock_guard lock(mutex_);
  // Of the volume announced before this one it is known by now what became of it.
  if (dropped != dropped_seen_ && !waiting_.empty()) waiting_.pop_back();
  dropped_seen_ = dropped;
  waiting_.emplace_back(when);
  if (begin_) ++report_.acquired;
}

void LiveStatistics::frame(Time start, Time end, unsigned shown) {
  const std::lock_guard lock(mutex_);
  const bool first = !begin_ && shown > 0;
  for (; shown_seen_ != shown; ++shown_seen_) {
    if (!first) ++report_.shown;
    if (waiting_.empty()) continue;
    if (!first && waiting_.front()) {
      report_.latencies.push_back(static_cast<float>(milliseconds(end - *waiting_.front())));
    }
    waiting_.pop_front();
  }
  if (begin_) {
    ++report_.frames;
    report_.worst_frame = std::max(report_.worst_frame, milliseconds(end - start));
  } else if (first) {
    begin_ = end;
    dropped_before_ = dropped_seen_;
    report_.acquired = static_cast<unsigned>(waiting_.size());
  }
}

std::optional<LiveStatistics::Time> LiveStatistics::begin() const {
  const std::lock_guard lock(mutex_);
  return begin_;
}

LiveReport LiveStatistics::report(Time now, unsigned dropped) const {
  const std::lock_guard lock(mutex_);
  LiveReport report = report_;
  report.dropped = dropped - dropped_before_;
  if (begin_) report.seconds = std::chrono::duration<double>(now - *begin_).count();
  std::ranges::sort(report.latencies);
  return report;
}

}  // namespace oct::app
