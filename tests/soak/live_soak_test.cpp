// Live volumes for a long time: memory and OpenGL objects stay flat.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdlib>
#include <random>
#include <string>
#include <thread>

#include "live/fast_opengl_volume_renderer.h"
#include "simulator/device_objects.h"
#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

using Clock = std::chrono::steady_clock;
using Seconds = std::chrono::duration<double>;

std::atomic<int> device_errors{0};

// A moving finger pad with two lateral sizes in turn, so that every start makes its OpenGL objects anew.
class LiveSoakTest : public testing::Test {
 protected:
  static constexpr unsigned width = 160;
  static constexpr unsigned height = 120;

  LiveSoakTest() {
    setLiveVolumeRenderingRenderer(live_, stage_.renderer);
    setSimulatedMotion(scan_.device, OCT_MOTION_DRIFT, 0.3, 4.0);
    // About 40 volumes a second, shown at the rate of a screen: other tests run beside this one.
    setSimulatedScanRate(scan_.device, 50'000.0, OCT_PACING_REAL_TIME);
    setErrorCallback(source_, [](const char*) { ++device_errors; });
    VolumeScene scene;
    scene.coloring = {ramp_colors(256, 0.5), 0.0, 60.0};
    apply(scene, stage_.renderer);
    setBorder(stage_.renderer, 0, 1, 1);  // labels are made when an angle first shows them
  }
  ~LiveSoakTest() override {
    clearDataSource(source_);
    frame();
    clearLiveRendering(live_);
    clearSimulatedScanPattern(patterns_[1]);
  }

  std::uint64_t volumes_shown() const {
    return reinterpret_cast<FastOpenGLVolumeRenderer*>(live_)->feed()->counts().shown;
  }

  void frame() {
    const auto begin = Clock::now();
    beginOffscreenFrame(stage_.target, width, height);
    renderVolume(live_);
    finishOffscreenFrame(stage_.target, picture_.bytes.data());
    std::this_thread::sleep_until(begin + std::chrono::milliseconds(16));
  }

  // One measurement, with a client that turns knobs.
  void measurement(Seconds length) {
    std::uniform_real_distribution<double> angle(-180.0, 180.0);
    startDataSource(live_, source_, patterns_[measurements_ % 2]);
    setRenderElements(stage_.renderer, 1, measurements_ % 3 == 0 ? 1 : 0);
    setVolumeMode(stage_.renderer, measurements_ % 3);
    setRenderingMode(stage_.renderer, measurements_ % 5 == 4 ? 1 : 0);
    for (const auto end = Clock::now() + length; Clock::now() < end;) {
      setAngles(stage_.renderer, angle(random_), angle(random_));
      frame();
    }
    stopDataSource(source_);
    frame();
    ++measurements_;
  }

  const VolumeStage stage_;
  const simulator::test::Scan scan_{createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 256, 3), 48, 24, 3.0, 1.5};
  const LiveVolumeRenderingHandle live_ = createLiveRendering();
  const LiveDataSourceHandle source_ = createOnlineDataSource(scan_.device, scan_.processing);
  const std::array<ScanPatternHandle, 2> patterns_{
      scan_.pattern, createSimulatedScanPattern(scan_.device, 32, 32, 2.0, 2.0)};
  Picture picture_{width, height};
  std::mt19937 random_{1};
  int measurements_ = 0;
};

TEST_F(LiveSoakTest, MemoryAndObjectsStayFlat) {
  const char* const asked = std::getenv("OCT_SOAK_SECONDS");
  const auto end = Clock::now() + Seconds(asked ? std::atof(asked) : OCT_SOAK_SECONDS);
  for (int i = 0; i < 5; ++i) measurement(Seconds(1.0));  // what the driver and the phantom build once
  const GlSpy spy;
  measurement(Seconds(1.0));
  const std::size_t objects = spy.live_objects();
  const std::size_t memory = resident_memory();
  const std::size_t threads = thread_count();
  const std::size_t handles = handle_count();
  std::size_t most_memory = memory;
  while (Clock::now() < end) {
    measurement(Seconds(2.0));
    ASSERT_EQ(spy.live_objects(), objects) << "after " << measurements_ << " measurements";
    most_memory = std::max(most_memory, resident_memory());
  }
  EXPECT_EQ(device_errors, 0);
  EXPECT_EQ(pending_error(), "(none)");
  EXPECT_LE(thread_count(), threads);
  EXPECT_LE(handle_count(), handles + 3);
  const double grown = (static_cast<double>(most_memory) - static_cast<double>(memory)) / (1 << 20);
  EXPECT_LT(grown, 16.0) << "MiB";
  EXPECT_GT(volumes_shown(), static_cast<std::uint64_t>(measurements_));
}

}  // namespace
}  // namespace oct::test
