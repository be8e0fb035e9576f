// Live volumes where something fails once: each OpenGL call, each allocation and each thread of a start.
#include <atomic>
#include <chrono>
#include <memory>
#include <optional>
#include <thread>
#include <vector>

#include "live/live_test.h"
#include "support/fault_scenario.h"
#include "support/scarce_resources.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

// Every volume of the device has the same samples, so that every frame with a volume is the same picture.
class LiveFailureTest : public LiveTest {
 protected:
  static constexpr int width = 40;
  static constexpr int height = 32;

  LiveFailureTest() {
    make_source();
    const Volume volume = test_volume(16, 12, 10);
    device_.set_volume(volume.voxels.data());
    scene_ = scene_of(volume, width, height, 30.0, 20.0);
    scene_.coloring.colors = ramp_colors(64, 0.5);
  }

  void begin() {
    stopDataSource(source_);
    picture();
    initializeVolumeRenderer(renderer_);
    apply(scene_, renderer_);
    start();
  }

  // The first frame with a volume, or the last one before an error.
  Picture shown() {
    const unsigned before = drawn();
    Picture result;
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(5);
    while (error_.empty() && std::chrono::steady_clock::now() < end) {
      result = picture();
      note_error();
      if (drawn() != before) break;
    }
    return result;
  }

  void finish() {
    stopDataSource(source_);
    picture();
    beginOffscreenFrame(volume_stage_.target, 1, 1);
    uninitializeVolumeRenderer(renderer_);
    finishOffscreenFrame(volume_stage_.target, nullptr);
  }

  std::string error() {
    note_error();
    return error_.empty() ? "(none)" : std::exchange(error_, {});
  }

  VolumeScene scene_;
  std::string error_;

 private:
  Picture picture() {
    Picture result(width, height);
    beginOffscreenFrame(volume_stage_.target, width, height);
    renderVolume(live_);
    finishOffscreenFrame(volume_stage_.target, result.bytes.data());
    return result;
  }

  unsigned drawn() const {
    unsigned count = 0;
    getLiveVolumeCounts(live_, &count, nullptr);
    return count;
  }

  void note_error() {
    const auto told = client_errors.all();
    client_errors.clear();
    const std::string pending = pending_error();
    if (error_.empty() && !told.empty()) error_ = told[0];
    if (error_.empty() && pending != "(none)") error_ = pending;
  }
};

TEST_F(LiveFailureTest, EveryOpenGLCall) {
  finish();
  pending_error();
  fail_every_call(
      {[&] { begin(); }, [&] { return shown(); }, [&] { finish(); }, [&] { return error(); }, true});
}

// A start that gets no memory or no thread says so, leaves nothing behind, and the next one works.
TEST_F(LiveFailureTest, EveryAllocationAndThreadOfAStart) {
  initializeVolumeRenderer(renderer_);
  apply(scene_, renderer_);
  const auto attempt = [&](auto scarce, const std::string& expected) {
    startDataSource(live_, source_, device_.scan_pattern());
    const bool failed = scarce->has_failed();
    scarce.reset();
    const std::string error = pending_error();
    stopDataSource(source_);
    EXPECT_TRUE(error == "(none)" || (failed && contains(error, expected))) << error;
    EXPECT_EQ(device_.objects(), 0);
    pending_error();  // there was nothing to stop
    error_.clear();
    return failed;
  };
  std::size_t allocations = 0;
  const auto one_allocation = [&] {
    return attempt(std::make_unique<ScarceMemory>(allocations, ScarceMemory::that_one_alone),
                   "std::bad_alloc");
  };
  while (one_allocation()) ASSERT_LT(++allocations, 200U);
  EXPECT_GE(allocations, 1U);
  EXPECT_TRUE(attempt(std::make_unique<ScarceThreads>(0), "Resource temporarily unavailable"));
  client_errors.clear();
  start();
  shown();
  EXPECT_EQ(error(), "(none)");
  finish();
}

// The acquisition thread gets no memory for one thing or another on the way from one volume to the next: it
// says so, and the rendering thread goes on.
TEST_F(LiveFailureTest, EveryAllocationOfAVolume) {
  setOnlineAnalogInputConfiguration(source_, true);
  initializeVolumeRenderer(renderer_);
  apply(scene_, renderer_);
  std::atomic<bool> failed = true;
  for (std::size_t index = 0; failed; ++index) {
    ASSERT_LT(index, 200U);
    std::optional<ScarceMemory> scarce;  // on the acquisition thread
    std::atomic<int> volumes = 0;
    failed = false;
    device_.set_analog(2 + static_cast<int>(index % 2), std::vector<float>(3 * 12 * 10).data());
    on_error([&] { scarce.reset(); });
    on_intensity([&] {
      if (scarce) failed = scarce->has_failed();
      scarce.reset();
      if (++volumes == 3) scarce.emplace(index, ScarceMemory::that_one_alone);
    });
    start();
    ASSERT_TRUE(frames_until([&] { return volumes > 5 || !client_errors.all().empty(); }));
    for (int i = 0; i < 3; ++i) frame();
    failed = failed || !client_errors.all().empty();
    stopDataSource(source_);
    EXPECT_EQ(device_.objects(), 0);
    frame();
    EXPECT_FALSE(isLiveVolumeRunning(live_));
    client_errors.clear();
    on_intensity(nullptr);
    on_error(nullptr);
  }
  finish();
}

}  // namespace
}  // namespace oct::test
