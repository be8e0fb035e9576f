// How many volumes came to the screen, and how many did not.
#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

#include "oct_device/oct_device.h"
#include "oct_device/oct_simulator.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

std::atomic<unsigned> acquired{0};

class LiveCountsTest : public testing::Test {
 protected:
  LiveCountsTest() {
    const std::vector<float> samples(8 * 4 * 4, 1.0F);
    device_ = createSimulatedPlayback(samples.data(), 8, 4, 4, 1, 1.0, 1.0, 1.0, 0.0, 1);
    processing_ = createSimulatedProcessing(device_);
    pattern_ = createSimulatedScanPattern(device_, 1, 1, 1.0, 1.0);
    live_ = createLiveRendering();
    setLiveVolumeRenderingRenderer(live_, stage_.renderer);
    setRenderElements(stage_.renderer, 1, 0);
    source_ = createOnlineDataSource(device_, processing_);
    acquired = 1;  // the first volume is not announced
    setRefIntensityCallback(source_, [](double) { ++acquired; });
  }
  ~LiveCountsTest() override {
    clearDataSource(source_);
    frame();
    clearLiveRendering(live_);
    clearSimulatedScanPattern(pattern_);
    clearSimulatedProcessing(processing_);
    clearSimulatedDevice(device_);
    EXPECT_EQ(pendingError(), "(none)");
  }

  void frame() {
    beginOffscreenFrame(stage_.target, 8, 8);
    renderVolume(live_);
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

  VolumeStage stage_;
  OCTDeviceHandle device_ = nullptr;
  ProcessingHandle processing_ = nullptr;
  ScanPatternHandle pattern_ = nullptr;
  LiveVolumeRenderingHandle live_ = nullptr;
  LiveDataSourceHandle source_ = nullptr;
};

TEST_F(LiveCountsTest, EveryVolumeIsDrawnDroppedOrOnItsWay) {
  startDataSource(live_, source_, pattern_);
  while (drawn() < 5) frame();
  const unsigned droppedBefore = dropped();  // none unless the machine is busy
  while (dropped() < droppedBefore + 2) std::this_thread::sleep_for(std::chrono::milliseconds(10));  // nobody renders
  const unsigned before = drawn();
  while (drawn() < before + 5) frame();
  stopDataSource(source_);
  // One volume may lie in the buffer, and one may have come after the request to stop.
  EXPECT_GE(acquired, drawn() + dropped());
  EXPECT_LE(acquired, drawn() + dropped() + 2);
}

TEST_F(LiveCountsTest, BeginAtZeroAndGoOnAcrossStarts) {
  EXPECT_EQ(drawn(), 0u);
  EXPECT_EQ(dropped(), 0u);
  for (unsigned wanted = 1; wanted <= 3; ++wanted) {
    startDataSource(live_, source_, pattern_);
    const unsigned before = drawn();
    while (drawn() == before) frame();
    stopDataSource(source_);
    frame();
    EXPECT_GE(drawn(), wanted);
  }
  getLiveVolumeCounts(live_, nullptr, nullptr);
}

TEST_F(LiveCountsTest, NeedAHandle) {
  unsigned drawnCount = 7;
  getLiveVolumeCounts(nullptr, &drawnCount, nullptr);
  EXPECT_EQ(pendingError(), "The specified VolumeRendererHandle is invalid. ");
  EXPECT_EQ(drawnCount, 7u);
}

}  // namespace
}  // namespace oct::test
