// Which volume a frame shows, and what follows.
#include "data/live_statistics.h"

#include <array>
#include <utility>

#include <gtest/gtest.h>

namespace oct::app::test {
namespace {

LiveStatistics::Time at(int milliseconds) {
  return LiveStatistics::Time(std::chrono::milliseconds(milliseconds));
}

// acquired, shown, dropped, frames
using Counts = std::array<unsigned, 4>;

void expect_report(const LiveReport& report, const Counts& counts, const std::vector<float>& latencies) {
  EXPECT_EQ((Counts{report.acquired, report.shown, report.dropped, report.frames}), counts);
  EXPECT_EQ(report.latencies, latencies);
}

TEST(LiveStatistics, LatencyEndsWithTheFrameThatShowsTheVolume) {
  LiveStatistics statistics;
  statistics.frame(at(80), at(90), 0);
  EXPECT_FALSE(statistics.begin());
  statistics.frame(at(90), at(100), 1);  // the first volume, which is not announced
  EXPECT_EQ(statistics.begin(), at(100));
  expect_report(statistics.report(at(110), 0), {0, 0, 0, 0}, {});
  EXPECT_EQ(statistics.report(at(110), 0).latency_at(0.5), 0.0F);
  statistics.acquired(at(200), 0);
  statistics.frame(at(205), at(210), 1);  // still the volume before
  statistics.frame(at(210), at(240), 2);
  statistics.acquired(at(300), 0);
  statistics.frame(at(300), at(310), 3);
  const LiveReport report = statistics.report(at(1100), 0);
  expect_report(report, {2, 2, 0, 3}, {10, 40});
  EXPECT_DOUBLE_EQ(report.seconds, 1.0);
  EXPECT_DOUBLE_EQ(report.worst_frame, 30.0);
  // The next volume may be announced before the one on its way is on the screen.
  statistics.acquired(at(400), 0);
  statistics.acquired(at(430), 0);
  statistics.frame(at(440), at(450), 4);
  statistics.frame(at(450), at(455), 5);
  expect_report(statistics.report(at(500), 0), {4, 4, 0, 5}, {10, 25, 40, 50});
  // A dropped volume is never the one on the screen.
  statistics.acquired(at(550), 0);
  statistics.acquired(at(600), 0);
  statistics.acquired(at(700), 1);  // that of 600 was dropped, that of 550 is on its way
  statistics.frame(at(710), at(720), 7);
  statistics.acquired(at(800), 1);
  statistics.acquired(at(900), 2);   // that of 800 was dropped
  statistics.acquired(at(1000), 3);  // that of 900, too
  statistics.frame(at(1001), at(1005), 8);
  expect_report(statistics.report(at(1100), 3), {10, 7, 3, 7}, {5, 10, 20, 25, 40, 50, 170});
  for (const auto& [share, latency] :
       {std::pair{0.0, 5}, {0.2, 10}, {0.5, 25}, {0.85, 50}, {0.99, 170}, {1.0, 170}})
    EXPECT_EQ(statistics.report(at(1100), 3).latency_at(share), latency) << "by rank: " << share;
}

TEST(LiveStatistics, DropsBeforeTheFirstVolumeDoNotCount) {
  LiveStatistics statistics;
  statistics.acquired(at(10), 1);  // the first one was dropped
  statistics.acquired(at(20), 2);  // and that of 10
  statistics.frame(at(25), at(30), 1);
  statistics.acquired(at(40), 2);
  statistics.frame(at(45), at(50), 2);
  expect_report(statistics.report(at(100), 2), {1, 1, 0, 1}, {10});
}

}  // namespace
}  // namespace oct::app::test
