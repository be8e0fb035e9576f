// Live volumes of devices in trouble, with a client that does anything at any time: nothing hangs, nothing leaks, and every
// picture is of one volume.
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <random>
#include <thread>
#include <vector>

#include "live/fast_opengl_volume_renderer.h"
#include "simulator/device_objects.h"
#include "support/gl_spy.h"
#include "support/process_memory.h"
#include "support/test_context.h"
#include "support/volume_scene.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

using Clock = std::chrono::steady_clock;

std::atomic<int> errors_told{0};

// Volumes of one value each, which differs from one to the next.
OCTDeviceHandle playback(int a_scans, int b_scans) {
  constexpr int depth = 32;
  constexpr int volumes = 5;
  const auto size = static_cast<std::size_t>(depth * a_scans * b_scans);
  std::vector<float> samples;
  for (int i = 0; i < volumes; ++i) samples.insert(samples.end(), size, static_cast<float>(20 + 10 * i));
  return createSimulatedPlayback(samples.data(), depth, a_scans, b_scans, volumes, 2.0, 3.0, 3.0, 0.0, 1);
}

class LiveTroubleTest : public testing::Test {
 protected:
  static constexpr std::size_t devices = 3;  // two play back, one looks at a phantom
  static constexpr std::size_t views = 2;

  LiveTroubleTest() {
    for (std::size_t i = 0; i < devices; ++i) {
      setSimulatedScanRate(scans_[i].device, 40'000.0, OCT_PACING_REAL_TIME);
      make_source(i);
    }
    for (std::size_t i = 0; i < views; ++i) make_view(i);
    initializeVolumeRenderer(renderers_[1]);
    for (const VolumeRendererHandle renderer : renderers_) setRenderElements(renderer, 1, 1);
  }

  ~LiveTroubleTest() override {
    for (const LiveDataSourceHandle source : sources_) clearDataSource(source);
    frame();
    for (const LiveVolumeRenderingHandle view : views_) clearLiveRendering(view);
    uninitializeVolumeRenderer(renderers_[1]);
    deleteVolumeRenderer(renderers_[1]);
    clearSimulatedScanPattern(other_pattern_);
    clearSimulatedFailures();
  }

  void make_source(std::size_t i) {
    sources_[i] = createOnlineDataSource(scans_[i].device, scans_[i].processing);
    // One in three has nobody who listens.
    if (roll(3) > 0) setErrorCallback(sources_[i], [](const char*) { ++errors_told; });
  }
  void make_view(std::size_t i) {
    views_[i] = createLiveRendering();
    setLiveVolumeRenderingRenderer(views_[i], renderers_[roll(2)]);
  }

  void frame() {
    for (const LiveVolumeRenderingHandle view : views_) {
      beginOffscreenFrame(stage_.target, 64, 48);
      renderVolume(view);
      check_picture(*reinterpret_cast<FastOpenGLVolumeRenderer*>(view));
      finishOffscreenFrame(stage_.target, nullptr);
    }
  }

  // Played volumes are told by their A-scans.
  void check_picture(const FastOpenGLVolumeRenderer& view) {
    const GLuint texture = view.source().volume;
    if (texture == 0) return;
    glBindTexture(GL_TEXTURE_3D, texture);
    std::array<GLint, 3> size{};
    const GLenum queries[] = {GL_TEXTURE_WIDTH, GL_TEXTURE_HEIGHT, GL_TEXTURE_DEPTH};
    for (std::size_t i = 0; i < size.size(); ++i)
      glGetTexLevelParameteriv(GL_TEXTURE_3D, 0, queries[i], &size[i]);
    voxels_.resize(static_cast<std::size_t>(size[0] * size[1] * size[2]));
    glGetTexImage(GL_TEXTURE_3D, 0, GL_RED, GL_FLOAT, voxels_.data());
    glBindTexture(GL_TEXTURE_3D, 0);
    ++pictures_;
    if (size[1] < 16) return;
    const bool whole = std::ranges::all_of(voxels_, [&](float voxel) { return voxel == voxels_.front(); });
    torn_ += whole ? 0 : 1;
  }

  void device_trouble() {
    static constexpr const char* functions[] = {
        "getRawDataEx",    "executeProcessing", "createData",       "createRawData", "startMeasurement",
        "stopMeasurement", "getDataPtr",        "determineSurface", "setDataRange",  "getDataPropertyInt"};
    const char* const function = functions[roll(std::size(functions))];
    switch (roll(6)) {
      case 0:
        return failSimulatedCall("getRawDataEx", 0, "The cable is out. ");
      case 1:
      case 2:
        return clearSimulatedFailures();
      case 3:
        return delaySimulatedCall(function, 1, static_cast<int>(roll(60)));
      case 4:
        return setSimulatedScanPattern(scans_[2].device, roll(2) == 0 ? other_pattern_ : scans_[2].pattern);
      default:
        return failSimulatedCall(function, 1 + static_cast<int>(roll(5)), "A bad day. ");
    }
  }

  void client_call() {
    const std::size_t i = roll(devices);
    const std::size_t k = roll(views);
    switch (roll(10)) {
      case 0:
        return stopDataSource(sources_[i]);
      case 1:
        return cancelDataSource(sources_[i]);
      case 2:
        clearDataSource(sources_[i]);
        return make_source(i);
      case 3:
        clearLiveRendering(views_[k]);
        return make_view(k);
      case 4:
        return setLiveVolumeRenderingRenderer(views_[k], renderers_[roll(2)]);
      case 5:
        return setSizeZ(sources_[i], 8 + static_cast<int>(roll(26)));
      case 6:
        return setRenderElements(renderers_[k], roll(4) > 0, roll(2) > 0);
      default:
        return startDataSource(views_[k], sources_[i], scans_[i].pattern);
    }
  }

  // Starts with everything in order again and shows a volume.
  void settle() {
    clearSimulatedFailures();
    releaseSimulatedCalls();
    for (const LiveDataSourceHandle source : sources_) stopDataSource(source);
    for (const VolumeRendererHandle renderer : renderers_) setRenderElements(renderer, 1, 0);
    setSizeZ(sources_[0], 32);
    frame();
    char text[512];
    while (getError(text, sizeof text) != 0) {
    }
    startDataSource(views_[0], sources_[0], scans_[0].pattern);
    const int before = pictures_;
    for (const auto end = Clock::now() + std::chrono::seconds(20); pictures_ == before && Clock::now() < end;)
      frame();
    EXPECT_GT(pictures_, before) << "nothing comes any more";
    stopDataSource(sources_[0]);
    frame();
    while (pending_error() != "(none)") {
    }
  }

  std::size_t roll(std::size_t sides) { return random_() % sides; }

  std::mt19937 random_{7};
  const VolumeStage stage_;
  const std::array<VolumeRendererHandle, 2> renderers_{stage_.renderer, createVolumeRenderer()};
  const std::array<simulator::test::Scan, devices> scans_{
      simulator::test::Scan{playback(24, 12), 24, 12, 3.0, 3.0},
      simulator::test::Scan{playback(16, 20), 16, 20, 3.0, 3.0},
      simulator::test::Scan{createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 64, 3), 12, 10, 3.0, 3.0}};
  const ScanPatternHandle other_pattern_ = createSimulatedScanPattern(scans_[2].device, 10, 8, 2.0, 2.0);
  std::array<LiveDataSourceHandle, devices> sources_{};
  std::array<LiveVolumeRenderingHandle, views> views_{};
  std::vector<float> voxels_;
  int pictures_ = 0;
  int torn_ = 0;
};

TEST_F(LiveTroubleTest, NothingHangsOrLeaksAndEveryPictureIsOneVolume) {
  const char* const asked = std::getenv("OCT_SOAK_SECONDS");
  const auto length = std::chrono::duration<double>(asked ? std::atof(asked) : OCT_SOAK_SECONDS / 4.0);
  const auto end = Clock::now() + std::chrono::duration_cast<Clock::duration>(length);
  const auto trouble = [&](int rounds) {
    for (int i = 0; i < rounds; ++i) {
      client_call();
      if (roll(3) == 0) device_trouble();
      for (std::size_t frames = roll(6); frames > 0; --frames) frame();
      if (roll(4) == 0) std::this_thread::sleep_for(std::chrono::milliseconds(roll(30)));
      while (pending_error() != "(none)") {
      }
    }
    settle();
  };
  testing::internal::CaptureStderr();
  const GlSpy spy;
  trouble(100);
  const std::size_t objects = spy.live_objects();
  const int device_objects = getSimulatedObjectCount();
  const std::size_t memory = resident_memory();
  const std::size_t threads = thread_count();
  std::size_t most_memory = memory;
  int rounds = 1;
  for (; Clock::now() < end && !HasFailure(); ++rounds) {
    trouble(100);
    EXPECT_LE(spy.live_objects(), objects + 30) << "programs are made when they are first used";
    EXPECT_EQ(getSimulatedObjectCount(), device_objects);
    EXPECT_LE(thread_count(), threads);
    most_memory = std::max(most_memory, resident_memory());
    testing::internal::
        GetCapturedStderr();  // errors of calls that were refused, and of sources without a listener
    testing::internal::CaptureStderr();
  }
  testing::internal::GetCapturedStderr();
  EXPECT_EQ(torn_, 0);
  EXPECT_GT(errors_told, 0);
  const double grown = (static_cast<double>(most_memory) - static_cast<double>(memory)) / (1 << 20);
  EXPECT_LT(grown, 16.0) << "MiB";
  std::printf("%d rounds, %d pictures, %d errors told, %.1f MiB grown\n", rounds, pictures_,
              errors_told.load(), grown);
}

}  // namespace
}  // namespace oct::test
