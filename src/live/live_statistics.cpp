#include "live/live_statistics.h"

#include <algorithm>
#include <atomic>
#include <cmath>

namespace oct {

void LiveStatistics::show(LiveTime processed, LiveTime shown) {
  const std::chrono::duration<float, std::milli> latency = shown - processed;
  last_[counts.shown % kept] = {shown, latency.count()};
  ++counts.shown;
}

double LiveStatistics::volumes_per_second(LiveTime now) const {
  const LiveTime since = now - std::chrono::seconds(1);
  const auto count = std::count_if(last_.begin(), last_.begin() + static_cast<std::ptrdiff_t>(size()),
                                   [since](const Shown& shown) { return shown.when > since; });
  return static_cast<double>(count);
}

LiveStatistics::Latency LiveStatistics::latency() const {
  if (size() == 0) return {};
  std::array<float, kept> sorted{};
  for (std::size_t i = 0; i < size(); ++i) sorted[i] = last_[i].latency_ms;
  std::sort(sorted.begin(), sorted.begin() + static_cast<std::ptrdiff_t>(size()));
  const auto at = [&](double share) {
    const auto rank = static_cast<std::size_t>(std::ceil(share * static_cast<double>(size())));
    return static_cast<double>(sorted[std::max<std::size_t>(rank, 1) - 1]);
  };
  return {at(0.5), at(0.99), at(1.0)};
}

double measure_upload_rate() {
  using Clock = std::chrono::steady_clock;
  static std::atomic<Clock::rep> last = Clock::now().time_since_epoch().count();
  const Clock::time_point now = Clock::now();
  const Clock::duration passed(now.time_since_epoch().count() -
                               last.exchange(now.time_since_epoch().count()));
  const auto milliseconds =
      static_cast<std::int32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(passed).count());
  return 1.0 / (milliseconds / 1000.0);
}

}  // namespace oct
