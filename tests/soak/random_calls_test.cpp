// Random calls within the rules: two threads with a context each draw with the same renderers, a third sets, hosts and
// measures. Nothing crashes, hangs or is left behind, and what is drawn at the end is right.
#include <array>
#include <atomic>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <map>
#include <mutex>
#include <shared_mutex>
#include <string>
#include <thread>

#include "simulator/device_objects.h"
#include "soak/dice.h"
#include "support/gl_spy.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

int asked_calls() {
  const char* const asked = std::getenv("OCT_RANDOM_CALLS");
  return asked ? std::atoi(asked) : 10'000;
}

// A handle with the client's own order around it: one thread at a time draws with it, and it is freed while nobody
// else has it.
template <class Handle>
struct Owned {
  Handle handle = nullptr;
  std::shared_mutex alive;
  std::mutex drawing;
};

using Call = std::function<void(Dice&)>;

class Client {
 public:
  explicit Client(unsigned seed) : seed_(seed) {
    for (auto& each : displays_) each.handle = createDisplayRendering();
    for (auto& each : volumes_) each.handle = createVolumeRenderer();
    for (auto& each : offlines_) each.handle = createOfflineRendering();
    setLiveVolumeRenderingRenderer(live_, live_renderer_);
    setRenderElements(live_renderer_, 1, 0);
    setSimulatedScanRate(scan_.device, 1e6, OCT_PACING_REAL_TIME);
  }

  ~Client() {
    clearDataSource(source_);
    clearLiveRendering(live_);
    deleteVolumeRenderer(live_renderer_);
    for (auto& each : displays_) clearDisplayRendering(each.handle);
    for (auto& each : offlines_) clearOfflineRendering(each.handle);
    for (auto& each : volumes_) deleteVolumeRenderer(each.handle);
  }

  void run(int calls) {
    on_threads(3, [&](int thread) {
      Dice dice(seed_ + static_cast<unsigned>(thread));
      const OffscreenTargetHandle target = thread < 2 ? createOffscreenTarget() : nullptr;
      const std::vector<Call> table = thread < 2 ? drawing_calls(target) : other_calls();
      for (int i = 0; i < calls / 3; ++i) {
        table[static_cast<std::size_t>(dice.below(static_cast<int>(table.size())))](dice);
        note(pending_error());
      }
      if (thread == 2) stopDataSource(source_);
      give_back(target);
      note(pending_error());  // an object without a renderer allocates nothing
    });
    for (const auto& [error, count] : errors_) std::cout << count << " x " << error << '\n';
  }

 private:
  // Each thread gives back what it may have in its own context.
  void give_back(OffscreenTargetHandle target) {
    if (!target) return;
    beginOffscreenFrame(target, 1, 1);
    for (auto& each : displays_) with(each, uninitDisplayRendering);
    for (auto& each : volumes_) with(each, uninitializeVolumeRenderer);
    for (auto& each : offlines_) {
      with(each, [](OfflineRenderingHandle handle) { allocateOfflineVolume(handle, 0, 0, 0); });
    }
    finishOffscreenFrame(target, nullptr);
    clearOffscreenTarget(target);
  }

  template <class Handle, class Action>
  static void with(Owned<Handle>& owned, Action&& action) {
    const std::shared_lock alive(owned.alive);
    const std::lock_guard drawing(owned.drawing);
    action(owned.handle);
  }

  template <class List, class Action>
  static Call draw(List& list, Action action) {
    return [&list, action](Dice& dice) {
      with(list[static_cast<std::size_t>(dice.below(2))], [&](auto handle) { action(handle, dice); });
    };
  }
  template <class List, class Action>
  static Call set(List& list, Action action) {
    return [&list, action](Dice& dice) {
      auto& owned = list[static_cast<std::size_t>(dice.below(2))];
      const std::shared_lock alive(owned.alive);
      action(owned.handle, dice);
    };
  }
  template <class List, class Create, class Clear>
  static Call renew(List& list, Create create, Clear clear) {
    return [&list, create, clear](Dice& dice) {
      if (dice.below(4) != 0) return;
      auto& owned = list[static_cast<std::size_t>(dice.below(2))];
      const std::lock_guard alone(owned.alive);
      clear(owned.handle);
      owned.handle = create();
    };
  }

  std::vector<Call> drawing_calls(OffscreenTargetHandle target) {
    return {
        [=](Dice& dice) { beginOffscreenFrame(target, extent(dice), extent(dice)); },
        [=](Dice& dice) {
          beginOffscreenFrame(target, 32, 32);
          std::vector<std::uint8_t> pixels(32 * 32 * 4);
          finishOffscreenFrame(target, dice.flip() ? pixels.data() : nullptr);
        },
        draw(displays_, [](auto handle, Dice&) { initDisplayRendering(handle); }),
        draw(displays_, [](auto handle, Dice&) { uninitDisplayRendering(handle); }),
        draw(displays_, [](auto handle, Dice&) { renderDisplay(handle); }),
        draw(volumes_, [](auto handle, Dice&) { initializeVolumeRenderer(handle); }),
        draw(volumes_, [](auto handle, Dice&) { uninitializeVolumeRenderer(handle); }),
        draw(offlines_,
             [](auto handle, Dice& dice) { allocateOfflineVolume(handle, dice.size(), dice.size(), 9); }),
        draw(offlines_, [this](auto handle, Dice&) { uploadOfflineVolume(handle, voxels_.data()); }),
        draw(offlines_,
             [this](auto handle, Dice& dice) {
               uploadOfflineSubVolume(handle, dice.size(), dice.size(), voxels_.data());
             }),
        draw(offlines_, [this](auto handle, Dice&) { uploadOverlayOfflineVolume(handle, voxels_.data()); }),
        draw(offlines_,
             [this](auto handle, Dice& dice) {
               uploadOfflineSecondaryData(handle, dice.size(), dice.size(), 2, 0, 2, voxels_.data());
             }),
        draw(offlines_,
             [](auto handle, Dice& dice) {
               renderOfflineVolume(handle, dice.of({-1, 0, 1, 2}));
             }),
        [this](Dice& dice) {
          const std::lock_guard drawing(live_drawing_);
          dice.below(8) == 0 ? initializeVolumeRenderer(live_renderer_) : renderVolume(live_);
        },
        [](Dice&) { glRenderTestImage(); },
        renew(displays_, createDisplayRendering, clearDisplayRendering),
        renew(volumes_, createVolumeRenderer, [this](VolumeRendererHandle handle) { forget(handle); }),
        renew(offlines_, createOfflineRendering, clearOfflineRendering),
    };
  }

  // A renderer outlives the offline objects that draw with it.
  void forget(VolumeRendererHandle renderer) {
    for (auto& each : offlines_) {
      const std::shared_lock alive(each.alive);
      const std::lock_guard drawing(each.drawing);
      setOfflineRenderingRenderer(each.handle, nullptr);
    }
    deleteVolumeRenderer(renderer);
  }

  std::vector<Call> other_calls() {
    return {
        set(displays_,
            [this](auto handle, Dice& dice) {
              setDisplayData(handle, dice.size(), dice.size(), voxels_.data());
              setDisplayOverlayData(handle, dice.size(), dice.size(), voxels_.data());
            }),
        set(displays_,
            [this](auto handle, Dice& dice) {
              setDisplayColormap(handle, colors_.data(), dice.size());
              setDisplayOverlayColormap(handle, dice.below(10), colors_.data(), dice.size());
              setDisplayBlur(handle, dice.flip(), dice.flip());
              setDisplayPepperFilter(handle, dice.flip());
              setDisplayNumberOverlays(handle, 0, dice.below(10));
            }),
        set(volumes_,
            [](auto handle, Dice& dice) {
              setAngles(handle, dice.real() * 90.0, dice.real() * 90.0);
              setZoom(handle, dice.real());
              setTranslation(handle, dice.real(), dice.real(), dice.real());
              setRange(handle, dice.real(), dice.real(), dice.real());
              setClipPlane(handle, dice.flip(), dice.flip(), static_cast<float>(dice.real()));
              fixClipPlane(handle, dice.flip());
              setRemoveSegment(handle, dice.flip());
            }),
        set(volumes_,
            [this](auto handle, Dice& dice) {
              setRenderElements(handle, dice.flip(), dice.flip());
              setRenderingMode(handle, dice.below(3));
              setVolumeMode(handle, dice.below(5));
              setVolumeLighting(handle, dice.real(), dice.real(), dice.real());
              setRayJitter(handle, dice.flip());
              setOpacityLength(handle, dice.real());
              setRenderingSlices(handle, dice.of({-1, 0, 1, 64}));
              setBorder(handle, dice.below(8) == 0, dice.flip(), dice.flip());
              setRendererColormap(handle, colors_.data(), dice.size());
              setSurface(handle, dice.size(), dice.size(), dice.real(), voxels_.data());
              setSurfaceDepths(handle, dice.real(), dice.real());
            }),
        [this](Dice& dice) {
          auto& volume = volumes_[static_cast<std::size_t>(dice.below(2))];
          const std::shared_lock alive(volume.alive);
          with(offlines_[static_cast<std::size_t>(dice.below(2))],
               [&](auto handle) { setOfflineRenderingRenderer(handle, volume.handle); });
        },
        [](Dice& dice) { a_loop(dice); },
        [this](Dice& dice) {
          dice.flip() ? startDataSource(live_, source_, scan_.pattern) : stopDataSource(source_);
        },
        [this](Dice& dice) { setSizeZ(source_, dice.size()); },
        [this](Dice&) {
          int sizes[3];
          getLiveVolumeRenderingSize(live_, &sizes[0], &sizes[1], &sizes[2]);
          isLiveVolumeRunning(live_);
          getRenderedVolumesPerSec(live_);
        },
    };
  }

  static void a_loop(Dice& dice) {
    if (dice.below(8) != 0) return;
    const OpenGLControlLoopHandle loop = createOpenGLControlLoop();
    if (dice.flip()) resizeOpenGLControlLoop(loop, extent(dice), extent(dice));
    OpenGLControlLoopMode(loop, static_cast<unsigned>(dice.below(2)));
    registerOpenGLControlLoopCallback(loop, [](unsigned, unsigned, unsigned, void*) {});
    for (int i = dice.below(5); i > 0; --i) renderMultOpenGLControlLoop(loop, dice.below(4) - 1);
    std::vector<std::uint8_t> pixels(64 * 64 * 4);
    if (dice.flip()) snapshotOpenGLControlLoop(loop, dice.size(), dice.size(), pixels.data());
    deleteOpenGLControlLoop(loop);
  }

  static unsigned extent(Dice& dice) { return static_cast<unsigned>(dice.of({0, 1, 7, 32, 64})); }

  void note(const std::string& error) {
    const std::lock_guard lock(errors_mutex_);
    if (error != "(none)") ++errors_[error.substr(0, error.find('\n'))];
  }

  const unsigned seed_;
  const std::vector<float> voxels_ = std::vector<float>(33 * 33 * 33, 0.5F);
  const std::array<std::uint32_t, 64> colors_{0x80FF0000U, 0xFF00FF00U};
  std::array<Owned<DisplayRenderingHandle>, 2> displays_;
  std::array<Owned<VolumeRendererHandle>, 2> volumes_;
  std::array<Owned<OfflineRenderingHandle>, 2> offlines_;
  const simulator::test::Scan scan_{createSimulatedDevice(OCT_PHANTOM_FINGER_PAD, 64, 3), 8, 6, 3.0, 1.5};
  const LiveVolumeRenderingHandle live_ = createLiveRendering();
  const VolumeRendererHandle live_renderer_ = createVolumeRenderer();
  const LiveDataSourceHandle source_ = createOnlineDataSource(scan_.device, scan_.processing);
  std::mutex live_drawing_;
  std::mutex errors_mutex_;
  std::map<std::string, int> errors_;
};

// Both kinds of pictures, in a fresh context.
void expect_right_pictures() {
  Scene scene;
  scene.image = test_image(64, 48);
  scene.width = 48;
  scene.height = 64;
  EXPECT_TRUE(agree(DisplayStage().draw(scene), reference_picture(scene)));
  VolumeScene volume = scene_of(test_volume(8, 8, 8), 64, 64, 30.0, 20.0);
  const Picture first = VolumeStage().draw(volume);
  EXPECT_TRUE(agree(VolumeStage().draw(volume), first));
  EXPECT_EQ(pending_error(), "(none)");
}

TEST(RandomCallsTest, TwoContextsAndThreeThreads) {
  setSurfaceSharing(1);
  const TestContext loads_opengl;
  const GlSpy spy;
  for (unsigned seed = 1; seed <= 2; ++seed) {
    Client(seed).run(asked_calls() / 2);
    pending_error();
    expect_right_pictures();
  }
}

}  // namespace
}  // namespace oct::test
