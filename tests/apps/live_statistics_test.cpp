// Which volume a frame shows, and what follows.
#include "data/live_statistics.h"

#include <gtest/gtest.h>

namespace oct::app::test {
namespace {

using Time = LiveStatistics::Time;

Time at(int milliseconds) {
  return Time(std::chrono::milliseconds(milliseconds));
}

class LiveStatisticsTest : public testing::Test {
 protected:
  // The first volume, which is not announced, is on the screen at 100 ms.
  LiveStatisticsTest() {
    statistics_.frame(at(80), at(90), 0);
    EXPECT_FALSE(statistics_.begin());
    statistics_.frame(at(90), at(100), 1);
  }
  LiveReport report(unsigned dropped = 0) { return statistics_.report(at(1100), dropped); }

  LiveStatistics statistics_;
};

TEST_F(LiveStatisticsTest, BeginWithTheFirstVolume) {
  EXPECT_EQ(statistics_.begin(), at(100));
  const LiveReport nothing = report();
  EXPECT_DOUBLE_EQ(nothing.seconds, 1.0);
  EXPECT_EQ(nothing.acquired, 0u);
  EXPECT_EQ(nothing.shown, 0u);
  EXPECT_EQ(nothing.frames, 0u);
  EXPECT_EQ(nothing.latencyAt(0.5), 0.0f);
}

TEST_F(LiveStatisticsTest, LatencyEndsWithTheFrameThatShowsTheVolume) {
  statistics_.acquired(at(200), 0);
  statistics_.frame(at(205), at(210), 1);  // still the volume before
  statistics_.frame(at(210), at(240), 2);
  statistics_.acquired(at(300), 0);
  statistics_.frame(at(300), at(310), 3);
  const LiveReport all = report();
  EXPECT_EQ(all.latencies, (std::vector<float>{10, 40}));
  EXPECT_EQ(all.acquired, 2u);
  EXPECT_EQ(all.shown, 2u);
  EXPECT_EQ(all.frames, 3u);
  EXPECT_DOUBLE_EQ(all.worstFrame, 30.0);
}

// The next volume may be announced before the one on its way is on the screen.
TEST_F(LiveStatisticsTest, VolumesAreShownInTheirOrder) {
  statistics_.acquired(at(200), 0);
  statistics_.acquired(at(230), 0);
  statistics_.frame(at(240), at(250), 2);
  statistics_.frame(at(250), at(255), 3);
  EXPECT_EQ(report().latencies, (std::vector<float>{25, 50}));
}

TEST_F(LiveStatisticsTest, ADroppedVolumeIsNeverTheOneOnTheScreen) {
  statistics_.acquired(at(200), 0);
  statistics_.acquired(at(300), 1);  // that of 200 was dropped
  statistics_.frame(at(310), at(320), 2);
  statistics_.acquired(at(400), 1);
  statistics_.acquired(at(500), 2);  // that of 400 was dropped
  statistics_.acquired(at(600), 3);  // that of 500, too
  statistics_.frame(at(601), at(605), 3);
  const LiveReport all = report(3);
  EXPECT_EQ(all.latencies, (std::vector<float>{5, 20}));
  EXPECT_EQ(all.acquired, 5u);
  EXPECT_EQ(all.shown, 2u);
  EXPECT_EQ(all.dropped, 3u);
}

TEST(LiveStatisticsBefore, DropsBeforeTheFirstVolumeDoNotCount) {
  LiveStatistics statistics;
  statistics.acquired(at(10), 1);  // the first one was dropped
  statistics.acquired(at(20), 2);  // and that of 10
  statistics.frame(at(25), at(30), 1);
  statistics.acquired(at(40), 2);
  statistics.frame(at(45), at(50), 2);
  const LiveReport all = statistics.report(at(100), 2);
  EXPECT_EQ(all.latencies, (std::vector<float>{10}));
  EXPECT_EQ(all.dropped, 0u);
  EXPECT_EQ(all.acquired, 1u);
}

TEST(LiveReport, PercentilesAreByRank) {
  LiveReport all;
  for (int i = 1; i <= 200; ++i) all.latencies.push_back(static_cast<float>(i));
  EXPECT_EQ(all.latencyAt(0.5), 100.0f);
  EXPECT_EQ(all.latencyAt(0.99), 198.0f);
  EXPECT_EQ(all.latencyAt(1.0), 200.0f);
  EXPECT_EQ(all.latencyAt(0.0), 1.0f);
}

}  // namespace
}  // namespace oct::app::test
