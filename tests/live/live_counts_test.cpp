// How many volumes came to the screen, and how many did not.
#include <atomic>
#include <chrono>
#include <thread>

#include "live/simulated_live.h"

namespace oct::test {
namespace {

std::atomic<unsigned> acquired{0};

class LiveCountsTest : public SimulatedLiveTest {
 protected:
  LiveCountsTest()
      : SimulatedLiveTest(createSimulatedPlayback(std::vector<float>(8 * 4 * 4, 1.0F).data(), 8, 4, 4, 1, 1.0,
                                                  1.0, 1.0, 0.0, 1),
                          1, 1, 1.0, 1.0) {
    acquired = 1;  // the first volume is not announced
    setRefIntensityCallback(source_, [](double) { ++acquired; });
  }

  unsigned drawn() const {
    unsigned count = 0;
    getLiveVolumeCounts(live_, &count, nullptr);
    return count;
  }
  unsigned dropped() const {
    unsigned count = 0;
    getLiveVolumeCounts(live_, nullptr, &count);
    return count;
  }
  void drawUntil(unsigned count) {
    while (drawn() < count) frame(8, 8);
  }
};

TEST_F(LiveCountsTest, EveryVolumeIsDrawnDroppedOrOnItsWay) {
  start();
  drawUntil(5);
  const unsigned before = dropped();  // none unless the machine is busy
  while (dropped() < before + 2)
    std::this_thread::sleep_for(std::chrono::milliseconds(10));  // nobody renders
  drawUntil(drawn() + 5);
  stopDataSource(source_);
  // One volume may lie in the buffer, and one may have come after the request to stop.
  EXPECT_GE(acquired, drawn() + dropped());
  EXPECT_LE(acquired, drawn() + dropped() + 2);
}

TEST_F(LiveCountsTest, BeginAtZeroAndGoOnAcrossStarts) {
  EXPECT_EQ(drawn(), 0u);
  EXPECT_EQ(dropped(), 0u);
  for (unsigned wanted = 1; wanted <= 3; ++wanted) {
    start();
    drawUntil(drawn() + 1);
    stopDataSource(source_);
    frame(8, 8);
    EXPECT_GE(drawn(), wanted);
  }
  getLiveVolumeCounts(live_, nullptr, nullptr);
}

}  // namespace
}  // namespace oct::test
