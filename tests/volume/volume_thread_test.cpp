// Setters on eight threads while frames are drawn.
#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

VolumeScene threadScene() {
  VolumeScene scene;
  scene.volume = testVolume(8, 8, 8);
  scene.viewportWidth = 24;
  scene.viewportHeight = 16;
  scene.slices = 16;
  return scene;
}

// The two background colours are set together, and so are seen: a frame of two colours would be a torn state.
// So is the colour of a volume of ones, which one call swaps between two maps.
TEST(VolumeThreadTest, SettersNeverTearAFrame) {
  VolumeStage stage;
  VolumeScene scene = threadScene();
  scene.volume.voxels.assign(scene.volume.voxels.size(), 1.0F);
  scene.mode = 1;
  stage.draw(scene);
  const VolumeRendererHandle h = stage.renderer;

  const std::vector<std::uint32_t> red(300, 0xFF0000FFU);
  const std::vector<std::uint32_t> green(7, 0xFF00FF00U);
  setRendererColormap(h, red.data(), 300);
  setRenderBackground(h, 0x0000FFFFU, 0x0000FFFFU);
  const std::vector<std::function<void(int)>> setters{
      [&](int i) {
        setRenderBackground(h, i % 2 ? 0x0000FFFFU : 0x404040FFU, i % 2 ? 0x0000FFFFU : 0x404040FFU);
      },
      [&](int i) {
        i % 2 ? setRendererColormap(h, red.data(), 300) : setRendererColormap(h, green.data(), 7);
      },
      [&](int i) { setAngles(h, i, -i), setTranslation(h, 0.0, 0.0, 0.01 * (i % 10)); },
      [&](int i) {
        setRendererColoringBoundaries(h, 0.0, 0.1 + i % 5), setOverlayRendererColoringBoundaries(h, i, 2 * i);
      },
      [&](int i) {
        setRenderingSlices(h, 4 + i % 20), setUsePerspective(h, i % 3 == 0), setZoom(h, 30.0 + i % 10);
      },
      [&](int i) {
        setClipPlane(h, i % 4 == 0, i % 8 == 0, 0.95F), fixClipPlane(h, i % 3), setRemoveSegment(h, i % 2);
      },
      [&](int i) {
        setBorder(h, 0, 0, 0), setVolumeMode(h, 1 + i % 2), setRenderForeground(h, 0xFF),
            setSectionalView(h, 1, 0.1F, 1, 0.2F, 1, 0.3F);
      },
      [&](int i) {
        const std::vector<float> heights(9, static_cast<float>(i % 3));
        setSurface(h, 3, 3, 1.0, heights.data()), setSurfaceDepths(h, 0.0, 1.0),
            setSurfaceColormap(h, red.data(), 1 + i % 9);
        setRendererSecondarySliceIndex(h, i), setLateralVoxelsPerPixel(h, i);
      },
  };
  std::atomic<bool> stop{false};
  std::atomic<int> calls{0};
  std::vector<std::thread> threads;
  for (const auto& setter : setters) {
    threads.emplace_back([&stop, &calls, &setter] {
      for (int i = 0; !stop; ++i) {
        setter(i);
        ++calls;
        if (i % 16 == 0) std::this_thread::yield();
      }
    });
  }
  int torn = 0;
  for (int i = 0; i < 500; ++i) {
    const Picture picture = stage.frame(24, 16, 0);
    const std::uint8_t* const bottom = picture.pixel(0, 0);
    const std::uint8_t* const top = picture.pixel(0, 15);
    const bool even = std::equal(bottom, bottom + 4, top);
    const bool known = (bottom[0] == 255 && bottom[2] == 0) || (bottom[0] == 0x40 && bottom[2] == 0x40);
    if (!even || !known) ++torn;
  }
  stop = true;
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(torn, 0);
  EXPECT_GT(calls, 500) << "the setters did not get their turn";
  EXPECT_EQ(pendingError(), "(none)");
}

// Two renderers with contexts of their own, on two threads.
TEST(VolumeThreadTest, RenderersOfTwoContextsDoNotMeet) {
  const VolumeScene scene = threadScene();
  std::vector<Picture> pictures(2);
  std::vector<std::thread> threads;
  for (std::size_t t = 0; t < 2; ++t) {
    threads.emplace_back([&, t] {
      VolumeStage stage;
      for (int i = 0; i < 5; ++i) pictures[t] = stage.draw(scene);
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(pictures[0].bytes, pictures[1].bytes);
  EXPECT_EQ(pendingError(), "(none)");
}

}  // namespace
}  // namespace oct::test
