// Setters on several threads while frames are drawn.
#include <atomic>
#include <chrono>
#include <functional>
#include <future>
#include <thread>
#include <vector>

#include <gtest/gtest.h>

#include "support/gl_spy.h"
#include "support/test_context.h"
#include "support/volume_scene.h"

namespace oct::test {
namespace {

const std::vector<std::uint32_t> red(300, 0xFF0000FFU);
const std::vector<std::uint32_t> green(7, 0xFF00FF00U);

void set_everything(VolumeRendererHandle h, int i) {
  const std::uint32_t color = i % 2 ? 0x0000FFFFU : 0x404040FFU;
  setRenderBackground(h, color, color);
  i % 2 ? setRendererColormap(h, red.data(), 300) : setRendererColormap(h, green.data(), 7);
  setAngles(h, i, -i), setTranslation(h, 0.0, 0.0, 0.01 * (i % 10)), setZoom(h, 30.0 + i % 10);
  setRendererColoringBoundaries(h, 0.0, 0.1 + i % 5), setOverlayRendererColoringBoundaries(h, i, 2 * i);
  setRendererSecondaryColoringBoundaries(h, i, 2 * i), setRendererSecondarySliceIndex(h, i);
  setRenderingSlices(h, 4 + i % 20), setUsePerspective(h, i % 3 == 0), setLateralVoxelsPerPixel(h, i);
  setVolumeLighting(h, 0.5, i % 2, 0.1), setRayJitter(h, i % 3), setOpacityLength(h, 0.1 * (i % 2));
  setClipPlane(h, i % 4 == 0, i % 8 == 0, 0.95F), fixClipPlane(h, i % 3), setRemoveSegment(h, i % 2);
  setVolumeMode(h, 1 + i % 2), setSectionalView(h, 1, 0.1F, 1, 0.2F, i % 2, 0.3F);
  const std::vector<float> heights(9, static_cast<float>(i % 3) / 2.0F);
  setSurface(h, 3, 3, 1.0, heights.data()), setSurfaceDepths(h, 0.0, 1.0);
  setSurfaceColormap(h, red.data(), 1 + i % 9), setOverlayRendererColormap(h, red.data(), 1 + i % 9);
  setRendererSecondaryColormap(h, red.data(), 2), setRenderForeground(h, 0x80FF00FFU + 256U * (i % 4));
  setBorder(h, i % 4 != 0, i % 3, i % 2), setRenderElements(h, i % 5 != 0, i % 2);
  setRenderingMode(h, i % 7 == 0);
  explainFrame(h, nullptr, 0);
}

// The two background colours are set together, and so are seen: a frame of two colours would be a torn state.
// After the storm the renderer draws what a new one draws.
TEST(VolumeThreadTest, SettersNeverTearAFrame) {
  VolumeScene scene = scene_of(test_volume(8, 8, 8), 120, 90);
  scene.slices = 16;
  scene.scale_marks = scene.edges = scene.box = scene.clip = scene.removed_segment = true;
  scene.clip_value = 0.6F;
  scene.surface = {2, 2, 1.0, {0.2F, 0.4F, 0.6F, 0.8F}};
  scene.surface_coloring = {green, 0.2, 0.8};
  VolumeStage stage;
  stage.draw(scene);
  setRenderBackground(stage.renderer, 0x0000FFFFU, 0x0000FFFFU);
  std::atomic<bool> running{true};
  std::atomic<int> calls{0};
  std::thread storm([&] {
    on_threads(4, [&](int thread) {
      for (int i = thread; running; ++i, ++calls) {
        set_everything(stage.renderer, i);
        std::this_thread::yield();
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
  EXPECT_GT(calls, 40) << "the setters did not get their turn";
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

// Everything is set anew while a frame is being drawn: it returns, the frame shows nothing of it and the next one all.
TEST(VolumeThreadTest, SettersDoNotWaitForAFrame) {
  VolumeScene scene = scene_of(test_volume(8, 8, 8), 80, 60);
  scene.slices = 16;
  scene.clip = true;
  scene.clip_value = 0.6F;
  scene.surface = {2, 2, 1.0, {0.2F, 0.4F, 0.6F, 0.8F}};
  scene.surface_coloring = {green, 0.2, 0.8};
  VolumeScene next = scene;
  next.coloring = {red, 0.0, 3.0};
  next.angle_x = 70.0;
  next.mode = 1;
  next.clip_value = 0.3F;
  next.edges = next.box = next.removed_segment = true;
  next.background_top = next.background_bottom = 0x00FF00FFU;
  next.surface.values = {0.9F, 0.1F, 0.2F, 0.5F};
  const auto draw_while = [](const VolumeStage& stage, const std::function<void()>& set) {
    GlSpy spy;
    spy.in_next("glClear", [&] {
      auto setters = std::async(std::launch::async, set);
      EXPECT_EQ(setters.wait_for(std::chrono::seconds(10)), std::future_status::ready);
    });
    return stage.frame();
  };
  VolumeStage stage;
  const Picture first = stage.draw(scene);
  const Picture held = draw_while(stage, [&] {
    apply(next, stage.renderer);
    setRange(stage.renderer, 1.0, 2.0, 3.0);
    EXPECT_EQ(pending_error(), "(none)");
  });
  EXPECT_TRUE(agree(held, first, exact));
  EXPECT_TRUE(agree(stage.frame(), VolumeStage().draw(next), exact));
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
