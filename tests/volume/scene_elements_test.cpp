// What is drawn around the volume, beyond the pictures that are compared with the reference: what hides it,
// its colour, its texts, its objects, and what happens when there is no font.
#include <algorithm>
#include <cmath>

#include "support/gl_spy.h"
#include "volume/missing_fonts.h"
#include "volume/text/text_rasteriser.h"
#include "volume/volume_test.h"

namespace oct::test {
namespace {

class SceneElementsTest : public VolumeTest {
 protected:
  SceneElementsTest() {
    scene_.viewport_width = 200;
    scene_.viewport_height = 160;
    scene_.angle_x = 25.0;
    scene_.angle_y = -35.0;
    scene_.range = {1.5F, 2.0F, 2.5F};
    scene_.zoom = 45.0;
    scene_.mode = 0;
    scene_.coloring = {{0x00000000U, 0x00000000U}, 0.0, 1.0};  // nothing is seen of the volume
    scene_.background_bottom = scene_.background_top = 0x000000FFU;
  }

  void frame_all() { scene_.scale_marks = scene_.edges = scene_.box = true; }
};

TEST_F(SceneElementsTest, AnOpaqueVolumeHidesTheEdgesBehindIt) {
  scene_.coloring = {{0xFF000000U, 0xFF000000U}, -1.0, 2.0};
  scene_.edges = true;
  const Picture drawn = stage_.draw(scene_);
  ReferencePicture expected = reference_picture(scene_);
  const glm::dvec2 far_corner = ReferenceCamera(scene_).to_window({-1, 1, -1});
  const auto hidden = [&](const auto& edge) { return edge.first == far_corner || edge.second == far_corner; };
  for (const auto& edge : expected.lines) {
    if (!hidden(edge)) continue;
    const glm::ivec2 middle = 0.5 * (edge.first + edge.second);
    for (int i = 0; i < 9; ++i) {
      EXPECT_EQ(drawn.bgra(middle.x + i % 3 - 1, middle.y + i / 3 - 1), (std::array{0, 0, 0, 255}));
    }
  }
  EXPECT_EQ(std::erase_if(expected.lines, hidden), 3U);
  EXPECT_TRUE(lines_show(drawn, expected, scene_));
}

TEST_F(SceneElementsTest, TheForegroundColoursEverything) {
  frame_all();
  scene_.coloring.colors = {0xFF000000U};
  scene_.foreground = 0x00FF00FFU;
  for (const bool sectional : {false, true}) {
    scene_.sectional = sectional;
    scene_.clip = scene_.removed_segment = !sectional;
    scene_.clip_value = 0.45F;
    int lit = 0;
    const Picture drawn = stage_.draw(scene_);
    drawn.for_each([&](int column, int row) {
      const auto [blue, green, red, alpha] = drawn.bgra(column, row);
      ASSERT_EQ(blue + red, 0);
      ASSERT_EQ(alpha, 255) << "an opaque picture stays opaque";
      lit += green > 100;
    });
    EXPECT_GT(lit, 300);
  }
}

// A label that shows the same text at another angle consists of the same pixels somewhere else.
TEST_F(SceneElementsTest, LabelsKeepTheirPixelsWhileTheBoxTurns) {
  scene_.viewport_width = 400;
  scene_.viewport_height = 320;
  scene_.scale_marks = true;
  const auto ink = [this] {
    const Picture picture = stage_.draw(scene_);
    double sum = 0.0;
    for (std::size_t i = 0; i < picture.bytes.size(); i += 4) sum += picture.bytes[i] / 255.0;
    return sum;
  };
  const double marks = ink();
  EXPECT_GT(marks, 400.0) << "numbers, captions and ticks";
  EXPECT_LT(marks, 6000.0);
  scene_.angle_y += 1.0;
  EXPECT_NEAR(ink(), marks, 0.2 * marks);

  constexpr const char* no_font = "No font was found for text labels. ";
  const auto failure = [] { return failure_of([] { TextRasteriser(18, false); }); };
  stage_.restart();
  hide_fonts();
  EXPECT_EQ(failure(), no_font);
  const double ticks = ink();
  EXPECT_EQ(pending_error(), no_font);
  EXPECT_GT(ticks, 100.0) << "everything but the labels is drawn";
  EXPECT_LT(ticks, marks - 200.0);
  show_fonts();
  EXPECT_EQ(failure(), "(none)");
  EXPECT_NEAR(ink(), marks, 0.2 * marks);
  expect_no_error();
}

// Where ticks and labels stand, and that they read well, was looked at. Fonts differ from machine to machine:
// their pixels may differ, what is not text may not.
TEST_F(SceneElementsTest, TheFrameLooksAsAccepted) {
  scene_ = scene_of(test_volume(8, 8, 8), 420, 320, 25.0, -35.0);
  scene_.range = {1.5F, 2.0F, 2.5F};
  scene_.zoom = 42.0;
  scene_.coloring.colors = {0x00000000U, 0x00000000U};
  frame_all();
  const Picture picture = stage_.draw(scene_);
  EXPECT_TRUE(looks_like(picture, "frame_with_scale_marks", {12, 0.97, 255, 3.0}));
  setRange(renderer_, 7.0, 8.0, 9.0);
  EXPECT_TRUE(agree(stage_.frame(), picture, exact)) << "numbers are those of the volume, too";
  expect_no_error();
}

TEST_F(SceneElementsTest, ASurfaceIsUploadedOnceAndOutlivesItsOpenGLObjects) {
  scene_.surface = {3, 2, 80.0, {20.0F, 21.0F, 22.0F, 24.0F, 25.0F, 27.0F}};
  scene_.surface_coloring = {opaque_colors(48), 20.0, 30.0};
  scene_.volume_shown = false;
  const Picture before = stage_.draw(scene_);
  GlSpy spy;
  stage_.frame();
  const int per_frame = spy.calls("glBufferData");
  stage_.frame();
  EXPECT_EQ(spy.calls("glBufferData"), 2 * per_frame);
  setSurface(renderer_, 3, 2, 80.0, scene_.surface.values.data());
  spy.fail_next("glBufferData", per_frame + 1);
  stage_.frame();
  EXPECT_TRUE(pending_error().starts_with("An OpenGL error in VolumeRenderer::surface changed occured: "));
  clear_gl_errors();
  stage_.restart();
  const Coloring coloring = scene_.surface_coloring;
  scene_.surface = {};
  apply(scene_, renderer_);
  setSurfaceColormap(renderer_, coloring.colors.data(), 48);
  setSurfaceDepths(renderer_, 20.0, 30.0);
  setRenderElements(renderer_, 0, 1);
  EXPECT_TRUE(agree(stage_.frame(), before, exact));
  setSurface(renderer_, 0, 2, 80.0, nullptr);
  EXPECT_TRUE(shows_background());
}

// Whatever is shown, and whatever of it moves.
TEST_F(SceneElementsTest, AFrameIsFewOpenGLCalls) {
  frame_all();
  scene_.clip = scene_.removed_segment = true;
  scene_.clip_value = 0.6F;
  scene_.overlay = scene_.volume;
  scene_.content = 2;
  scene_.surface = {4, 4, 1.0, std::vector<float>(16, 0.5F)};
  stage_.draw(scene_);
  beginOffscreenFrame(stage_.target, 400, 320);
  renderOfflineVolume(offline_, 2);
  GlSpy spy;
  const auto expect_few = [&] {
    spy.forget_calls();
    renderOfflineVolume(offline_, 2);
    EXPECT_LE(spy.total(), 300);
    return spy.calls("glBufferData");
  };
  renderOfflineVolume(offline_, 2);
  const int cut = spy.calls("glBufferData");
  spy.forget_calls();
  renderOfflineVolume(offline_, 2);
  EXPECT_LE(spy.total(), 120) << "the copy of a frame like the last one, and the client's state";
  setAngles(renderer_, 26.0, -34.0);
  EXPECT_EQ(expect_few(), cut + 3) << "border and ghost, ticks, labels";
  setClipPlane(renderer_, 0, 0, 0.0F);
  expect_few();
  setAngles(renderer_, 27.0, -33.0);
  EXPECT_EQ(expect_few(), 2) << "ticks and labels; the box is the same";
  finishOffscreenFrame(stage_.target, nullptr);
  expect_no_error();
}

TEST_F(SceneElementsTest, NothingIsLeftBehindAndNothingIsMadeTwice) {
  frame_all();
  scene_.clip = scene_.removed_segment = true;
  scene_.clip_value = 0.6F;
  scene_.overlay = scene_.secondary = scene_.volume;
  scene_.content = 2;
  scene_.surface = {4, 4, 1.0, std::vector<float>(16, 0.5F)};
  const Picture before = stage_.draw(scene_);
  EXPECT_EQ(log_of([&] { stage_.frame(); }), "") << "the log is for what is wrong";
  GlSpy spy;
  {
    VolumeStage stage;
    const auto built = [&] {
      return std::array{spy.calls("glGenTextures"), spy.calls("glTexImage1D"), spy.calls("glTexImage2D"),
                        spy.calls("glTexImage3D"), static_cast<int>(spy.live_objects())};
    };
    for (int round = 0; round < 3; ++round) {
      const std::size_t after_init = spy.live_objects();
      EXPECT_TRUE(agree(stage.draw(scene_), before, exact));
      setRenderingMode(stage.renderer, 1);
      for (int i = 0; i < 2; ++i) stage.frame();  // the second is kept
      EXPECT_GT(spy.live_objects(), after_init);
      auto expected = built();
      stage.frame();
      EXPECT_EQ(built(), expected) << "a frame like the last one makes nothing, no text either";
      setRendererColormap(stage.renderer, scene_.coloring.colors.data(), 2);
      for (int i = 0; i < 2; ++i) stage.frame();
      ++expected[1];  // the map
      ++expected[2];  // its fine steps
      EXPECT_EQ(built(), expected) << "once per change";
      setRenderingMode(stage.renderer, 0);
      stage.frame();
      expected = built();
      for (int i = 0; i < 2; ++i) stage.frame(201, 160, 2);
      expected[0] += 2;
      expected[2] += 4;
      EXPECT_EQ(built(), expected)
          << "the surface's positions and depths and the kept picture have the viewport's size";
      const std::string text = log_of([&] { stage.restart(); });
      EXPECT_TRUE(contains(text, "Unloading font renderer.\n"));
    }
    // Deleted with its context current, an initialised renderer takes its objects with it.
    const std::size_t others = spy.live_objects();
    const VolumeRendererHandle forgotten = createVolumeRenderer();
    initializeVolumeRenderer(forgotten);
    EXPECT_GT(spy.live_objects(), others + 2);
    deleteVolumeRenderer(forgotten);
    EXPECT_EQ(spy.live_objects(), others);
  }
  EXPECT_EQ(spy.live_objects(), 0U);
}

}  // namespace
}  // namespace oct::test
