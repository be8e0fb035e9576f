// Setters on nine threads while frames are drawn.
#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

VolumeScene thread_scene() {
  VolumeScene scene = scene_of(test_volume(8, 8, 8), 120, 90);
  scene.slices = 16;
  scene.scale_marks = scene.edges = scene.box = true;
  return scene;
}

using Setter = std::function<void(int turn)>;

const std::vector<std::uint32_t> red(300, 0xFF0000FFU);
const std::vector<std::uint32_t> green(7, 0xFF00FF00U);

// One for each of nine threads; no two set the same.
std::vector<Setter> every_setter(VolumeRendererHandle h) {
  return {
      [h](int i) {
        const std::uint32_t color = i % 2 ? 0x0000FFFFU : 0x404040FFU;
        setRenderBackground(h, color, color);
      },
      [h](int i) {
        i % 2 ? setRendererColormap(h, red.data(), 300) : setRendererColormap(h, green.data(), 7);
      },
      [h](int i) { setAngles(h, i, -i), setTranslation(h, 0.0, 0.0, 0.01 * (i % 10)); },
      [h](int i) {
        setRendererColoringBoundaries(h, 0.0, 0.1 + i % 5), setOverlayRendererColoringBoundaries(h, i, 2 * i);
        setRendererSecondaryColoringBoundaries(h, i, 2 * i);
      },
      [h](int i) {
        setRenderingSlices(h, 4 + i % 20), setUsePerspective(h, i % 3 == 0), setZoom(h, 30.0 + i % 10);
      },
      [h](int i) {
        setClipPlane(h, i % 4 == 0, i % 8 == 0, 0.95F), fixClipPlane(h, i % 3), setRemoveSegment(h, i % 2);
      },
      [h](int i) {
        setVolumeMode(h, 1 + i % 2), setSectionalView(h, 1, 0.1F, 1, 0.2F, i % 2, 0.3F);
        setRendererSecondarySliceIndex(h, i), setLateralVoxelsPerPixel(h, i);
      },
      [h](int i) {
        const std::vector<float> heights(9, static_cast<float>(i % 3) / 2.0F);
        setSurface(h, 3, 3, 1.0, heights.data()), setSurfaceDepths(h, 0.0, 1.0);
        setSurfaceColormap(h, red.data(), 1 + i % 9);
        setOverlayRendererColormap(h, red.data(), 1 + i % 9), setRendererSecondaryColormap(h, red.data(), 2);
      },
      [h](int i) {
        setBorder(h, i % 4 != 0, i % 3, i % 2), setRenderForeground(h, 0x80FF00FFU + 256U * (i % 4));
        setRenderElements(h, i % 5 != 0, i % 2), setRenderingMode(h, i % 7 == 0);
      },
  };
}

// The two background colours are set together, and so are seen: a frame of two colours would be a torn state.
// After the storm the renderer draws what a new one draws.
TEST(VolumeThreadTest, SettersNeverTearAFrame) {
  VolumeScene scene = thread_scene();
  scene.clip = scene.removed_segment = true;
  scene.clip_value = 0.6F;
  scene.surface = {2, 2, 1.0, {0.2F, 0.4F, 0.6F, 0.8F}};
  scene.surface_coloring = {green, 0.2, 0.8};
  VolumeStage stage;
  stage.draw(scene);
  setRenderBackground(stage.renderer, 0x0000FFFFU, 0x0000FFFFU);
  const std::vector<Setter> setters = every_setter(stage.renderer);
  std::atomic<bool> running{true};
  std::atomic<int> calls{0};
  std::thread storm([&] {
    on_threads(static_cast<int>(setters.size()), [&](int thread) {
      for (int i = 0; running; ++i) {
        setters[static_cast<std::size_t>(thread)](i);
        ++calls;
        if (i % 16 == 0) std::this_thread::yield();
      }
    });
  });
  int torn = 0;
  for (int i = 0; i < 400; ++i) {
    const Picture picture = stage.frame(60 + i % 3, 40, 0);
    const auto bottom = picture.bgra(0, 0);
    const bool known = (bottom[0] == 255 && bottom[2] == 0) || (bottom[0] == 0x40 && bottom[2] == 0x40);
    if (picture.bgra(0, 39) != bottom || !known) ++torn;
  }
  running = false;
  storm.join();
  EXPECT_GT(calls, 400) << "the setters did not get their turn";
  EXPECT_EQ(torn, 0);
  std::vector<Picture> pictures;
  for (const bool sectional : {false, true}) {
    scene.sectional = sectional;
    pictures.push_back(stage.draw(scene));
  }
  VolumeStage fresh;  // whose context is current from here on
  for (const bool sectional : {false, true}) {
    scene.sectional = sectional;
    EXPECT_TRUE(agree(pictures[sectional], fresh.draw(scene), exact)) << sectional;
  }
  EXPECT_EQ(pending_error(), "(none)");
}

// Two renderers with contexts of their own, on two threads.
TEST(VolumeThreadTest, RenderersOfTwoContextsDoNotMeet) {
  std::vector<Picture> pictures(2);
  on_threads(2, [&](int thread) {
    VolumeStage stage;
    for (int i = 0; i < 6; ++i) pictures[static_cast<std::size_t>(thread)] = stage.draw(thread_scene());
  });
  EXPECT_EQ(pictures[0].bytes, pictures[1].bytes);
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
