// The exports of the volume renderer: handles, checks, and the states of an object.
#include <gtest/gtest.h>

#include "support/mark_recorder.h"
#include "support/reference_camera.h"
#include "support/test_context.h"
#include "support/volume_reference.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

TEST(VolumeApiTest, NullIsRefusedEverywhere) {
  expectNullRefused("The specified VolumeRendererHandle is invalid. ", deleteVolumeRenderer,
                    initializeVolumeRenderer, uninitializeVolumeRenderer, clearVolumeRenderer, setAngles,
                    setTranslation, setRange, setZoom, setRenderingSlices, setUsePerspective,
                    setLateralVoxelsPerPixel, setRenderingMode, setVolumeMode, setSectionalView, setClipPlane,
                    fixClipPlane, setBorder, setRemoveSegment, setRenderElements, setRenderBackground,
                    setRenderForeground, setRendererColormap, setRendererSecondaryColormap,
                    setOverlayRendererColormap, setSurfaceColormap, setRendererColoringBoundaries,
                    setRendererSecondaryColoringBoundaries, setOverlayRendererColoringBoundaries,
                    setRendererSecondarySliceIndex, setSurface, setSurfaceDepths);
}

VolumeScene smallScene() {
  VolumeScene scene = sceneOf(testVolume(12, 10, 9), 60, 50, 20.0, 30.0);
  scene.coloring = {opaqueColors(32), 0.1, 1.0};
  scene.mode = 1;
  return scene;
}

class VolumeRendererApiTest : public testing::Test {
 protected:
  VolumeRenderer& object() const { return *reinterpret_cast<VolumeRenderer*>(handle_); }
  testing::AssertionResult shows(const VolumeScene& scene) const {
    return agree(stage_.frame(60, 50, 0), referencePicture(scene), {1, 0.98, 255});
  }
  testing::AssertionResult showsBackground() const {
    return agree(stage_.frame(60, 50, 0), backgroundPicture(smallScene()), {1, 1.0, 1});
  }

  VolumeStage stage_;
  VolumeRendererHandle handle_ = stage_.renderer;
};

TEST_F(VolumeRendererApiTest, DefaultsAreThoseOfANewObject) {
  const VolumeSettings settings = object().settings();
  EXPECT_EQ(settings.view.zoom, 40.0);
  EXPECT_TRUE(settings.view.perspective);
  EXPECT_EQ(settings.slices, 128);
  EXPECT_EQ(settings.range.modelScale, glm::vec3(1.0F, -1.0F, 1.0F));
  EXPECT_FALSE(settings.renderVolume);
  EXPECT_FALSE(settings.renderSurface);
  EXPECT_TRUE(settings.frame.edges && settings.frame.scaleMarks && settings.frame.box);
  EXPECT_EQ(settings.backgroundBottom, unpackedColor(0x000066FFU));
  EXPECT_EQ(settings.backgroundTop, unpackedColor(0x000019FFU));
}

TEST_F(VolumeRendererApiTest, ModesAreChecked) {
  setVolumeMode(handle_, 2);
  setRenderingMode(handle_, 1);
  for (const int mode : {-1, 4, 100}) {
    setVolumeMode(handle_, mode);
    EXPECT_EQ(pendingError(), "Invalid rendering mode selected.");
  }
  for (const int mode : {-1, 2}) {
    setRenderingMode(handle_, mode);
    EXPECT_EQ(pendingError(), "Invalid rendering mode selected.");
  }
  setRenderingSlices(handle_, -1);
  EXPECT_EQ(pendingError(), "The number of rendering slices must not be negative. ");
  const VolumeSettings settings = object().settings();
  EXPECT_EQ(settings.volumeMode, VolumeMode::mean);
  EXPECT_EQ(settings.renderingMode, RenderingMode::sectionalView);
  EXPECT_EQ(settings.slices, 128);
}

TEST_F(VolumeRendererApiTest, SectionPositionsAreChecked) {
  setSectionalView(handle_, 1, 1.0F, 1, 0.0F, 1, 0.5F);
  EXPECT_EQ(pendingError(), "(none)");
  for (const float wrong : {1.0001F, -0.0001F, std::nanf("")}) {
    for (int axis = 0; axis < 3; ++axis) {
      float at[] = {0.0F, 1.0F, 0.5F};
      at[axis] = wrong;
      setSectionalView(handle_, 1, at[0], 1, at[1], 0, at[2]);
      EXPECT_EQ(
          pendingError(),
          "Slice positions of sectional view are out of range. Values must be in range from 0.0 to 1.0. ");
    }
  }
}

TEST_F(VolumeRendererApiTest, AnglesAreStoredWrapped) {
  setAngles(handle_, 190.0, -190.0);
  EXPECT_EQ(object().settings().view.angleX, -170.0F);
  EXPECT_EQ(object().settings().view.angleY, 170.0F);
}

TEST_F(VolumeRendererApiTest, ColorsAreOpaque) {
  setRenderForeground(handle_, 0x336699'00U);
  EXPECT_EQ(object().settings().foreground, glm::vec4(0.2F, 0.4F, 0.6F, 1.0F));
}

TEST_F(VolumeRendererApiTest, ColormapsAreChecked) {
  setRendererColormap(handle_, nullptr, 3);
  EXPECT_EQ(pendingError(), "Colour map data must not be null. ");
  setSurfaceColormap(handle_, nullptr, -1);
  EXPECT_EQ(pendingError(), "The number of colours must not be negative. ");
}

TEST_F(VolumeRendererApiTest, ClearingForgetsTheVolume) {
  const VolumeScene scene = smallScene();
  stage_.prepare(scene);
  EXPECT_TRUE(shows(scene));
  clearVolumeRenderer(handle_);
  EXPECT_EQ(object().source().volume, 0U);
  EXPECT_EQ(object().source().sliceCount, 0);
  EXPECT_TRUE(showsBackground());
  setRenderElements(handle_, 1, 0);
  EXPECT_TRUE(shows(scene));
}

TEST_F(VolumeRendererApiTest, AFrameMarksItsPassesInTheirOrder) {
  VolumeScene scene = smallScene();
  scene.clip = true;
  scene.clipValue = 0.6F;
  stage_.draw(scene);
  setBorder(handle_, 0, 1, 1);
  setRendererColormap(handle_, scene.coloring.colors.data(), 3);
  beginOffscreenFrame(stage_.target, 60, 50);
  using Names = MarkRecorder::Marks;
  const auto marksOfFrame = [&] {
    MarkRecorder recorder;
    renderOfflineVolume(stage_.offline, 0);
    Names names = recorder.all().begin()->second;
    std::erase_if(names, [](const std::string& name) { return name[0] == '-'; });
    for (std::string& name : names) name.erase(0, 1);
    return names;
  };
  EXPECT_EQ(marksOfFrame(), (Names{"OfflineRendering::render", "VolumeRenderer::render", "render: init",
                                   "render: colormap changed", "VolumeRenderer::render_elements",
                                   "VolumeRenderer::render_frame", "VolumeRenderer::render_clip_plane_border",
                                   "VolumeRenderer::render_clip_plane_border", "render_raycasting::drawing",
                                   "VolumeRenderer::render_clip_plane_border",
                                   "VolumeRenderer::render_clip_plane_border::draw_overlay",
                                   "VolumeRenderer::render_elements", "VolumeRenderer::render_frame"}));
  setRenderingMode(handle_, 1);
  EXPECT_EQ(marksOfFrame(),
            (Names{"OfflineRendering::render", "VolumeRenderer::render", "render: init",
                   "VolumeRenderer::render_elements", "VolumeRenderer::render_frame",
                   "VolumeRenderer::render_sectional_view", "VolumeRenderer::render_sectional_view",
                   "VolumeRenderer::render_sectional_view", "VolumeRenderer::render_elements",
                   "VolumeRenderer::render_frame"}));
  finishOffscreenFrame(stage_.target, nullptr);
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(VolumeRendererApiTest, DrawsBackgroundFromBottomToTop) {
  setBorder(handle_, 0, 0, 0);
  setRenderBackground(handle_, 0xFF0000FFU, 0x0000FFFFU);
  const Picture picture = stage_.frame(4, 256, 0);
  EXPECT_EQ(pendingError(), "(none)");
  VolumeScene expected = sceneOf({}, 4, 256);
  expected.backgroundBottom = 0xFF0000FFU;
  expected.backgroundTop = 0x0000FFFFU;
  EXPECT_TRUE(agree(picture, backgroundPicture(expected)));
}

TEST_F(VolumeRendererApiTest, ColorsLiveFromInitToUninit) {
  VolumeScene scene = smallScene();
  stage_.prepare(scene);
  EXPECT_TRUE(shows(scene));
  initializeVolumeRenderer(handle_);  // again: the colours stay
  EXPECT_TRUE(shows(scene));
  uninitializeVolumeRenderer(handle_);
  setRendererColormap(handle_, scene.coloring.colors.data(), 32);
  setRendererColoringBoundaries(handle_, 0.3, 0.4);
  EXPECT_EQ(pendingError(), "(none)");
  stage_.frame(60, 50, 0);
  EXPECT_EQ(pendingError(), "Program has not been compiled yet.");
  initializeVolumeRenderer(handle_);
  scene.coloring = {{0xFF000000U, 0xFFFFFFFFU}, 0.0, 1.0};
  EXPECT_TRUE(shows(scene));
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(VolumeRendererApiTest, DualColoringNeedsASliceOfSecondaryData) {
  VolumeScene scene = smallScene();
  scene.mode = 3;
  stage_.prepare(scene);
  EXPECT_TRUE(showsBackground());
  scene.secondary = testVolume(2, 10, 9);
  scene.secondaryColoring.colors = opaqueColors(8);
  stage_.prepare(scene);
  EXPECT_TRUE(shows(scene));
  for (const int index : {-1, 2}) {
    setRendererSecondarySliceIndex(handle_, index);
    EXPECT_TRUE(showsBackground());
  }
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(VolumeRendererApiTest, AMapWithoutColorsShowsNothing) {
  const VolumeScene scene = smallScene();
  stage_.draw(scene);
  setRendererColormap(handle_, nullptr, 0);
  EXPECT_TRUE(showsBackground());
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(VolumeRendererApiTest, ViewportSizeIsOpenGLs) {
  beginOffscreenFrame(stage_.target, 20, 20);
  setViewportSize(13, 7);
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 13, 7}));
  EXPECT_EQ(pendingError(), "(none)");
}

// A picture in a corner of the target leaves the rest of the target to others, the clear apart.
TEST_F(VolumeRendererApiTest, AViewportOffTheOriginShowsTheSamePicture) {
  const VolumeScene scene = smallScene();
  stage_.draw(scene);
  Picture large(100, 90);
  beginOffscreenFrame(stage_.target, 100, 90);
  glViewport(31, 23, 60, 50);
  renderOfflineVolume(stage_.offline, 0);
  finishOffscreenFrame(stage_.target, large.bytes.data());
  Picture part(60, 50);
  for (int y = 0; y < 50; ++y) std::copy_n(large.pixel(31, 23 + y), 60 * 4, part.pixel(0, y));
  EXPECT_TRUE(agree(part, referencePicture(scene), {1, 0.98, 255}));
}

}  // namespace
}  // namespace oct::test
