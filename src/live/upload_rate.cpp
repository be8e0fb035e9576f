#include "live/upload_rate.h"

#include <atomic>
#include <chrono>
#include <cstdint>

namespace oct {

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
