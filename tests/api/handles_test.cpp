// Handles that are none: freed ones, those of another family, those that two threads free at once. Calls that get
// no memory.
#include <array>
#include <atomic>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include "oct_rendering/oct_rendering.h"
#include "support/scarce_resources.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

constexpr const char* not_valid = "The handle is not valid. ";

struct FamilyOfHandles {
  std::string name;
  std::function<void*()> create;
  std::function<void(void*)> use;
  std::function<void(void*)> destroy;
};

template <class Handle>
FamilyOfHandles family(const char* name, Handle (*create)(), void (*use)(Handle), void (*destroy)(Handle)) {
  return {name, create, [use](void* any) { use(static_cast<Handle>(any)); },
          [destroy](void* any) { destroy(static_cast<Handle>(any)); }};
}

std::vector<FamilyOfHandles> families() {
  return {
      family<DisplayRenderingHandle>("display", createDisplayRendering, clearDisplayData,
                                     clearDisplayRendering),
      family<VolumeRendererHandle>("volume", createVolumeRenderer, clearVolumeRenderer, deleteVolumeRenderer),
      family<OfflineRenderingHandle>(
          "offline", createOfflineRendering,
          [](OfflineRenderingHandle handle) { setOfflineAspectRatio(handle, 1.0F, 1.0F, 1.0F); },
          clearOfflineRendering),
      family<LiveVolumeRenderingHandle>(
          "live", createLiveRendering, [](LiveVolumeRenderingHandle handle) { isLiveVolumeRunning(handle); },
          clearLiveRendering),
      family<OffscreenTargetHandle>(
          "offscreen", createOffscreenTarget,
          [](OffscreenTargetHandle handle) {
            beginOffscreenFrame(handle, 4, 4);
            finishOffscreenFrame(handle, nullptr);
          },
          clearOffscreenTarget),
      family<OpenGLControlLoopHandle>("loop", createOpenGLControlLoop, unlockBuffer, deleteOpenGLControlLoop),
  };
}

// Each handle is good for the exports of its own family, while it lives.
TEST(HandlesTest, FreedAndForeignHandlesAreRefused) {
  setSurfaceSharing(1);
  for (const FamilyOfHandles& own : families()) {
    void* const handle = own.create();
    ASSERT_NE(handle, nullptr) << own.name;
    for (const FamilyOfHandles& other : families()) {
      const std::string expected = other.name == own.name ? "(none)" : not_valid;
      other.use(handle);
      EXPECT_EQ(pending_error(), expected) << own.name << " used as " << other.name;
      if (other.name == own.name) continue;
      other.destroy(handle);
      EXPECT_EQ(pending_error(), expected) << own.name << " freed as " << other.name;
    }
    own.destroy(handle);
    EXPECT_EQ(pending_error(), "(none)") << own.name;
    own.use(handle);
    EXPECT_EQ(pending_error(), not_valid) << own.name;
    own.destroy(handle);
    EXPECT_EQ(pending_error(), not_valid) << own.name;
  }
}

TEST(HandlesTest, RenderersThatAreGivenToOthersAreCheckedAsWell) {
  const OfflineRenderingHandle offline = createOfflineRendering();
  const LiveVolumeRenderingHandle live = createLiveRendering();
  const VolumeRendererHandle freed = createVolumeRenderer();
  deleteVolumeRenderer(freed);
  expect_refused({{not_valid, [&] { setOfflineRenderingRenderer(offline, freed); }},
                  {not_valid, [&] { setLiveVolumeRenderingRenderer(live, freed); }},
                  {"(none)", [&] { setOfflineRenderingRenderer(offline, nullptr); }}});
  clearLiveRendering(live);
  clearOfflineRendering(offline);
}

TEST(HandlesTest, OneOfSeveralThreadsFrees) {
  setSurfaceSharing(1);
  for (const FamilyOfHandles& own : families()) {
    if (own.name == "offscreen") continue;  // belongs to one thread
    void* const handle = own.create();
    std::atomic<int> refused{0};
    std::atomic<int> ready{0};
    on_threads(3, [&](int) {
      for (++ready; ready < 3;) {
      }
      own.destroy(handle);
      refused += pending_error() == not_valid;
    });
    EXPECT_EQ(refused, 2) << own.name;
  }
}

// Nothing on the way out needs memory: not what frees an object, and not what reports an error.
TEST(HandlesTest, WithoutMemoryObjectsAreFreedAndErrorsReported) {
  setSurfaceSharing(1);
  for (const FamilyOfHandles& own : families()) {
    void* const handle = own.create();
    {
      const ScarceMemory none(0);
      own.destroy(handle);
    }
    EXPECT_EQ(pending_error(), "(none)") << own.name;
    own.use(handle);
    EXPECT_EQ(pending_error(), not_valid) << own.name << " is left behind";
  }
  for (int round = 0; round < 3; ++round) {  // the reserve is there again each time
    testing::internal::CaptureStderr();
    {
      const ScarceMemory none(0);
      clearDisplayData(nullptr);
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "An error occured: std::bad_alloc\n");
    EXPECT_EQ(pending_error(), "std::bad_alloc");
  }
}

// One failed allocation is reported, or does not matter, and leaves nothing half done: the same call works again.
TEST(HandlesTest, AnyAllocationOfACallMayFail) {
  setSurfaceSharing(1);
  const DisplayRenderingHandle display = createDisplayRendering();
  const VolumeRendererHandle volume = createVolumeRenderer();
  const std::vector<float> samples(64, 1.0F);
  const std::array<std::uint32_t, 2> colors{};
  const OpenGLControlLoopHandle loop = createOpenGLControlLoop();
  resizeOpenGLControlLoop(loop, 8, 6);
  std::vector<std::uint8_t> pixels(4 * 4 * 4);
  std::vector<std::function<void()>> calls{
      [&] { setDisplayData(display, 8, 8, samples.data()); },
      [&] { setDisplayOverlayData(display, 4, 4, samples.data()); },
      [&] { setDisplayColormap(display, colors.data(), 2); },
      [&] { setSurface(volume, 8, 8, 1.0, samples.data()); },
      [] { setRendererLogFile("/no/such/folder/but/a/name/that/needs/memory"); },
      [&] { snapshotOpenGLControlLoop(loop, 4, 4, pixels.data()); },
      [&] { renderOpenGLControlLoop(loop); },
      [&] { registerOpenGLControlLoopCallback(loop, [](unsigned, unsigned, unsigned, void*) {}); },
      [] { setDeviceLibrary("a/name/that/needs/memory/to/be/kept"); },
  };
  for (const FamilyOfHandles& own : families()) {
    if (own.name == "offscreen") continue;  // the allocations are the driver's, which does not expect it
    calls.push_back([own] {
      if (void* const handle = own.create()) own.destroy(handle);
    });
  }
  for (std::size_t call = 0; call < calls.size(); ++call) {
    bool failed = true;
    for (std::size_t n = 0; failed && n < 200; ++n) {
      {
        const ScarceMemory scarce(n, ScarceMemory::that_one_alone);
        calls[call]();
        failed = scarce.has_failed();
      }
      const std::string error = pending_error();
      EXPECT_TRUE(error == "(none)" || (failed && contains(error, "std::bad_alloc")))
          << error << " of call " << call << ", allocation " << n;
    }
    EXPECT_FALSE(failed);
  }
  setRendererLogFile(nullptr);
  setDeviceLibrary(nullptr);
  pixels.assign(pixels.size(), 0);
  snapshotOpenGLControlLoop(loop, 4, 4, pixels.data());
  EXPECT_EQ(pixels[3], 255) << "it still draws";
  deleteOpenGLControlLoop(loop);
  deleteVolumeRenderer(volume);
  clearDisplayRendering(display);
}

// A program ends while threads of its own, and of the library's, still call.
TEST(ExitDeathTest, ThreadsMayRunOnWhileTheProcessEnds) {
  GTEST_FLAG_SET(death_test_style, "threadsafe");
  const auto end_amid_calls = [] {
    const VolumeRendererHandle volume = createVolumeRenderer();
    // Without a size the loop draws nothing: drivers take their own things apart at exit.
    static std::atomic<bool> up{false};
    const OpenGLControlLoopHandle loop =
        createOpenGLControlLoopCB([] { up = true; }, [] {}, [](const char*) {});
    while (!up) std::this_thread::yield();
    OpenGLControlLoopMode(loop, 0);
    std::atomic<int> running{0};
    for (int i = 0; i < 3; ++i) {
      std::thread([&] {
        for (;; ++running) {
          setAngles(volume, 1.0, 2.0);
          clearDisplayData(nullptr);
          pending_error();
          renderOpenGLControlLoop(loop);
        }
      }).detach();
    }
    while (running < 30) std::this_thread::yield();
    std::exit(0);
  };
  setSurfaceSharing(1);
  for (int i = 0; i < 5; ++i) EXPECT_EXIT(end_amid_calls(), testing::ExitedWithCode(0), "");
}

}  // namespace
}  // namespace oct::test
