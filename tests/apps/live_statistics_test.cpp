// Which volume a frame shows, and what follows.
#include "data/live_statistics.h"

#include <array>

#include <gtest/gtest.h>

namespace oct::app::test {
namespace {

using Time = LiveStatistics::Time;

Time at(int milliseconds) {
  return Time(std::chrono::milliseconds(milliseconds));
}

// The first volume, which is not announced, is on the screen at 100 ms.
struct LiveStatisticsTest : testing::Test {
  LiveStatisticsTest() {
    statistics.frame(at(80), at(90), 0);
    EXPECT_FALSE(statistics.begin());
    statistics.frame(at(90), at(100), 1);
    EXPECT_EQ(statistics.begin(), at(100));
  }
  LiveReport report(unsigned dropped = 0) { return statistics.report(at(1100), dropped); }

  LiveStatistics statistics;
};

// acquired, shown, dropped, frames
using Counts = std::array<unsigned, 4>;

void expect_report(const LiveReport& report, const Counts& counts, const std::vector<float>& latencies) {
  EXPECT_EQ((Counts{report.acquired, report.shown, report.dropped, report.frames}), counts);
  EXPECT_EQ(report.latencies, latencies);
}

TEST_F(LiveStatisticsTest, LatencyEndsWithTheFrameThatShowsTheVolume) {
  expect_report(report(), {0, 0, 0, 0}, {});
  EXPECT_EQ(report().latency_at(0.5), 0.0F);
  statistics.acquired(at(200), 0);
  statistics.frame(at(205), at(210), 1);  // still the volume before
  statistics.frame(at(210), at(240), 2);
  statistics.acquired(at(300), 0);
  statistics.frame(at(300), at(310), 3);
  expect_report(report(), {2, 2, 0, 3}, {10, 40});
  EXPECT_DOUBLE_EQ(report().seconds, 1.0);
  EXPECT_DOUBLE_EQ(report().worst_frame, 30.0);
}

// The next volume may be announced before the one on its way is on the screen.
TEST_F(LiveStatisticsTest, VolumesAreShownInTheirOrder) {
  statistics.acquired(at(200), 0);
  statistics.acquired(at(230), 0);
  statistics.frame(at(240), at(250), 2);
  statistics.frame(at(250), at(255), 3);
  expect_report(report(), {2, 2, 0, 2}, {25, 50});
}

TEST_F(LiveStatisticsTest, ADroppedVolumeIsNeverTheOneOnTheScreen) {
  statistics.acquired(at(150), 0);
  statistics.acquired(at(200), 0);
  statistics.acquired(at(300), 1);  // that of 200 was dropped, that of 150 is on its way
  statistics.frame(at(310), at(320), 3);
  statistics.acquired(at(400), 1);
  statistics.acquired(at(500), 2);  // that of 400 was dropped
  statistics.acquired(at(600), 3);  // that of 500, too
  statistics.frame(at(601), at(605), 4);
  expect_report(report(3), {6, 3, 3, 2}, {5, 20, 170});
}

TEST(LiveStatisticsBefore, DropsBeforeTheFirstVolumeDoNotCount) {
  LiveStatistics statistics;
  statistics.acquired(at(10), 1);  // the first one was dropped
  statistics.acquired(at(20), 2);  // and that of 10
  statistics.frame(at(25), at(30), 1);
  statistics.acquired(at(40), 2);
  statistics.frame(at(45), at(50), 2);
  expect_report(statistics.report(at(100), 2), {1, 1, 0, 1}, {10});
}

TEST(LiveReport, PercentilesAreByRank) {
  LiveReport all;
  for (int i = 1; i <= 200; ++i) all.latencies.push_back(static_cast<float>(i));
  EXPECT_EQ(all.latency_at(0.99), 198.0F);
  EXPECT_EQ(all.latency_at(1.0), 200.0F);
  EXPECT_EQ(all.latency_at(0.0), 1.0F);
}

}  // namespace
}  // namespace oct::app::test
