// Settings from several threads while the rendering thread draws.
#include <algorithm>
#include <atomic>
#include <chrono>
#include <future>
#include <thread>

#include "support/gl_spy.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

// Every colour map is of one colour and every image of one value, so that a
// torn one shows as a second colour.
TEST(DisplayThreadGLTest, NoTornSettings) {
  const DisplayStage stage;
  const DisplayRenderingHandle renderer = stage.renderer;
  const std::vector<float> first(64 * 64, 0.5F);
  setDisplayData(renderer, 64, 64, first.data());
  setDisplayOverlayData(renderer, 64, 64, first.data());

  std::atomic<bool> running{true};
  std::thread writers([&] {
    on_threads(4, [&](int writer) {
      for (int i = 0; running; ++i) {
        const std::uint32_t grey = static_cast<std::uint32_t>(i * 7 + writer * 50) & 0xFFU;
        const std::vector<std::uint32_t> colors(static_cast<std::size_t>(64 + 64 * (i % 4)),
                                                grey | grey << 8 | grey << 16 | 0xFF000000U);
        setDisplayColormap(renderer, colors.data(), static_cast<int>(colors.size()));
        const int size = 16 + i % 3 * 24;
        const std::vector<float> samples(static_cast<std::size_t>(size * size), 0.25F);
        setDisplayData(renderer, size, size, samples.data());
        setDisplayColoringBoundaries(renderer, -0.1 * i, 1.0 + 0.1 * i);
        setDisplayBlur(renderer, i % 2, i % 3 == 0);
        setDisplayPepperFilter(renderer, i % 5 == 0);
        explainDisplay(renderer, nullptr, 0);
        setDisplayFlip(renderer, i % 2);
        setBackgroundColor(renderer, i);
        setDisplayBounds(renderer, 0, size);
        // Invisible overlays: their work is done, their colour is not seen.
        const std::uint32_t clear[] = {0x00FFFFFFU, 0x00FFFFFFU};
        setDisplayOverlayColormap(renderer, i % OCT_DISPLAY_OVERLAYS, clear, 2);
        setDisplayOverlayData(renderer, size, size, samples.data());
        setDisplayOveralyThreshold(renderer, 10.0);
        setDisplayNumberOverlays(renderer, 0, i % 9);
      }
    });
  });

  int torn = 0;
  for (int frame = 0; frame < 200; ++frame) {
    const auto bytes = stage.frame(32, 32).bytes;
    torn += !std::equal(bytes.begin() + 4, bytes.end(), bytes.begin());
  }
  running = false;
  writers.join();
  EXPECT_EQ(torn, 0);
  EXPECT_EQ(pending_error(), "(none)");
}

// While a frame is held up in OpenGL, setters return, and the frame shows what it began with.
TEST(DisplayThreadGLTest, SettersDoNotWaitForAFrame) {
  Scene scene;
  scene.image = scene.overlay_image = test_image(40, 50);
  scene.width = 50;
  scene.height = 40;
  scene.overlays = {{{0x80FF0000U, 0x8000FF00U}, 0.0, 1.0}};
  const DisplayStage stage;
  apply(scene, stage.renderer);
  Scene next = scene;
  next.image = test_image(70, 20, 2);
  next.overlay_image = test_image(30, 30, 3);
  std::future<void> setters;
  Picture held;
  {
    GlSpy spy;
    spy.in_next("glTexSubImage2D", [&] {
      setters = std::async(std::launch::async, [&] { apply(next, stage.renderer); });
      EXPECT_EQ(setters.wait_for(std::chrono::seconds(5)), std::future_status::ready);
    });
    held = stage.frame(50, 40);
  }
  setters.get();
  EXPECT_TRUE(agree(held, reference_picture(scene)));
  EXPECT_TRUE(agree(stage.frame(50, 40), reference_picture(next)));
  EXPECT_EQ(pending_error(), "(none)");
}

}  // namespace
}  // namespace oct::test
