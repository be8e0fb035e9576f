// The exports of the volume renderer: handles, checks, and the states of an object.
#include <gtest/gtest.h>

#include <functional>
#include <map>

#include "core/timing_mark.h"
#include "support/test_context.h"
#include "support/volume_reference.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

VolumeRenderer& object(VolumeRendererHandle handle) {
  return *reinterpret_cast<VolumeRenderer*>(handle);
}

TEST(VolumeApiTest, NullIsRefusedEverywhere) {
  const std::vector<float> values(4);
  const std::map<std::string, std::function<void(VolumeRendererHandle)>> exports{
      {"deleteVolumeRenderer", [](auto h) { deleteVolumeRenderer(h); }},
      {"initializeVolumeRenderer", [](auto h) { initializeVolumeRenderer(h); }},
      {"uninitializeVolumeRenderer", [](auto h) { uninitializeVolumeRenderer(h); }},
      {"clearVolumeRenderer", [](auto h) { clearVolumeRenderer(h); }},
      {"setAngles", [](auto h) { setAngles(h, 0, 0); }},
      {"setTranslation", [](auto h) { setTranslation(h, 0, 0, 0); }},
      {"setRange", [](auto h) { setRange(h, 1, 1, 1); }},
      {"setZoom", [](auto h) { setZoom(h, 40); }},
      {"setRenderingSlices", [](auto h) { setRenderingSlices(h, 1); }},
      {"setUsePerspective", [](auto h) { setUsePerspective(h, true); }},
      {"setLateralVoxelsPerPixel", [](auto h) { setLateralVoxelsPerPixel(h, 1); }},
      {"setRenderingMode", [](auto h) { setRenderingMode(h, 0); }},
      {"setVolumeMode", [](auto h) { setVolumeMode(h, 0); }},
      {"setSectionalView", [](auto h) { setSectionalView(h, 1, 0, 1, 0, 1, 0); }},
      {"setClipPlane", [](auto h) { setClipPlane(h, 1, 0, 0); }},
      {"fixClipPlane", [](auto h) { fixClipPlane(h, 1); }},
      {"setBorder", [](auto h) { setBorder(h, 1, 1, 1); }},
      {"setRemoveSegment", [](auto h) { setRemoveSegment(h, 1); }},
      {"setRenderElements", [](auto h) { setRenderElements(h, 1, 1); }},
      {"setRenderBackground", [](auto h) { setRenderBackground(h, 0, 0); }},
      {"setRenderForeground", [](auto h) { setRenderForeground(h, 0); }},
      {"setRendererColormap", [&](auto h) { setRendererColormap(h, values.data(), 1); }},
      {"setRendererSecondaryColormap", [&](auto h) { setRendererSecondaryColormap(h, values.data(), 1); }},
      {"setOverlayRendererColormap", [&](auto h) { setOverlayRendererColormap(h, values.data(), 1); }},
      {"setSurfaceColormap", [&](auto h) { setSurfaceColormap(h, values.data(), 1); }},
      {"setRendererColoringBoundaries", [](auto h) { setRendererColoringBoundaries(h, 0, 1); }},
      {"setRendererSecondaryColoringBoundaries",
       [](auto h) { setRendererSecondaryColoringBoundaries(h, 0, 1); }},
      {"setOverlayRendererColoringBoundaries", [](auto h) { setOverlayRendererColoringBoundaries(h, 0, 1); }},
      {"setRendererSecondarySliceIndex", [](auto h) { setRendererSecondarySliceIndex(h, 0); }},
      {"setSurface", [&](auto h) { setSurface(h, 2, 2, 1.0, values.data()); }},
      {"setSurfaceDepths", [](auto h) { setSurfaceDepths(h, 0, 1); }},
  };
  for (const auto& [name, call] : exports) {
    call(nullptr);
    EXPECT_EQ(pendingError(), "The specified VolumeRendererHandle is invalid. ") << name;
  }
}

class VolumeRendererApiTest : public testing::Test {
 protected:
  VolumeStage stage_;
  VolumeRendererHandle handle_ = stage_.renderer;
};

TEST_F(VolumeRendererApiTest, DefaultsAreThoseOfANewObject) {
  const VolumeSettings settings = object(handle_).settings();
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
  const VolumeSettings settings = object(handle_).settings();
  EXPECT_EQ(settings.volumeMode, VolumeMode::mean);
  EXPECT_EQ(settings.renderingMode, RenderingMode::sectionalView);
  EXPECT_EQ(settings.slices, 128);
}

TEST_F(VolumeRendererApiTest, SectionPositionsAreChecked) {
  setSectionalView(handle_, 1, 1.0F, 1, 0.0F, 1, 0.5F);
  EXPECT_EQ(pendingError(), "(none)");
  const char* const message =
      "Slice positions of sectional view are out of range. Values must be in range from 0.0 to 1.0. ";
  setSectionalView(handle_, 1, 1.0001F, 1, 0.0F, 1, 0.5F);
  EXPECT_EQ(pendingError(), message);
  setSectionalView(handle_, 1, 0.0F, 1, 0.0F, 0, -0.0001F);
  EXPECT_EQ(pendingError(), message);
  setSectionalView(handle_, 1, 0.0F, 1, std::nanf(""), 1, 0.5F);
  EXPECT_EQ(pendingError(), message);
}

TEST_F(VolumeRendererApiTest, AnglesAreStoredWrapped) {
  setAngles(handle_, 190.0, -190.0);
  EXPECT_EQ(object(handle_).settings().view.angleX, -170.0F);
  EXPECT_EQ(object(handle_).settings().view.angleY, 170.0F);
  setAngles(handle_, 540.0, 0.0);
  EXPECT_EQ(object(handle_).settings().view.angleX, 180.0F);
}

TEST_F(VolumeRendererApiTest, BorderArgumentsComeInTheirOwnOrder) {
  setBorder(handle_, 1, 0, 0);
  EXPECT_TRUE(object(handle_).settings().frame.scaleMarks);
  EXPECT_FALSE(object(handle_).settings().frame.edges);
  setBorder(handle_, 0, 1, 0);
  EXPECT_TRUE(object(handle_).settings().frame.edges);
  EXPECT_FALSE(object(handle_).settings().frame.scaleMarks);
  setBorder(handle_, 0, 0, 1);
  EXPECT_TRUE(object(handle_).settings().frame.box);
  EXPECT_FALSE(object(handle_).settings().frame.edges);
}

TEST_F(VolumeRendererApiTest, ColorsAreOpaque) {
  setRenderForeground(handle_, 0x336699'00U);
  EXPECT_EQ(object(handle_).settings().foreground, glm::vec4(0.2F, 0.4F, 0.6F, 1.0F));
}

TEST_F(VolumeRendererApiTest, ColormapsAreChecked) {
  setRendererColormap(handle_, nullptr, 3);
  EXPECT_EQ(pendingError(), "Colour map data must not be null. ");
  setSurfaceColormap(handle_, nullptr, -1);
  EXPECT_EQ(pendingError(), "The number of colours must not be negative. ");
}

VolumeScene smallScene() {
  VolumeScene scene;
  scene.volume = testVolume(12, 10, 9);
  scene.coloring = {opaqueColors(32), 0.1, 1.0};
  scene.mode = 1;
  scene.viewportWidth = 60;
  scene.viewportHeight = 50;
  scene.angleX = 20.0;
  scene.angleY = 30.0;
  return scene;
}

constexpr Tolerance tolerance{1, 0.98, 255};

Picture background(int width, int height) {
  VolumeScene empty = smallScene();
  empty.viewportWidth = width;
  empty.viewportHeight = height;
  empty.translation = {100.0, 0.0, 0.0};
  return referencePicture(empty).picture;
}

TEST_F(VolumeRendererApiTest, ClearingForgetsTheVolume) {
  const VolumeScene scene = smallScene();
  EXPECT_TRUE(agree(stage_.draw(scene), referencePicture(scene), tolerance));
  clearVolumeRenderer(handle_);
  EXPECT_EQ(object(handle_).source().volume, 0U);
  EXPECT_EQ(object(handle_).source().sliceCount, 0);
  EXPECT_TRUE(agree(stage_.frame(60, 50, 0), background(60, 50), {1, 1.0, 1}));
  setRenderElements(handle_, 1, 0);
  EXPECT_TRUE(agree(stage_.frame(60, 50, 0), referencePicture(scene), tolerance));
}

class MarkRecorder : public TimingListener {
 public:
  MarkRecorder() { setTimingListener(this); }
  ~MarkRecorder() override { setTimingListener(nullptr); }
  void begin(std::string_view name, std::uint32_t, Time) override { names.emplace_back(name); }
  void end(std::string_view, std::uint32_t, Time) override {}
  void instant(std::string_view name, std::uint32_t, Time) override { names.emplace_back(name); }

  std::vector<std::string> names;
};

TEST_F(VolumeRendererApiTest, AFrameMarksItsPassesInTheirOrder) {
  VolumeScene scene = smallScene();
  scene.clip = true;
  scene.clipValue = 0.6F;
  stage_.draw(scene);
  setBorder(handle_, 0, 1, 1);
  setRendererColormap(handle_, scene.coloring.colors.data(), 3);
  beginOffscreenFrame(stage_.target, 60, 50);
  const auto marksOfFrame = [&] {
    const MarkRecorder recorder;
    renderOfflineVolume(stage_.offline, 0);
    return recorder.names;
  };
  using Names = std::vector<std::string>;
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
  EXPECT_GE(picture.pixel(1, 0)[2], 254);
  EXPECT_LE(picture.pixel(1, 0)[0], 1);
  EXPECT_LE(picture.pixel(2, 255)[2], 1);
  EXPECT_GE(picture.pixel(2, 255)[0], 254);
  EXPECT_EQ(picture.pixel(2, 255)[3], 255);
}

TEST_F(VolumeRendererApiTest, ColorsLiveFromInitToUninit) {
  VolumeScene scene = smallScene();
  EXPECT_TRUE(agree(stage_.draw(scene), referencePicture(scene), tolerance));
  initializeVolumeRenderer(handle_);  // again: the colours stay
  EXPECT_TRUE(agree(stage_.frame(60, 50, 0), referencePicture(scene), tolerance));
  uninitializeVolumeRenderer(handle_);
  setRendererColormap(handle_, scene.coloring.colors.data(), 32);
  setRendererColoringBoundaries(handle_, 0.3, 0.4);
  EXPECT_EQ(pendingError(), "(none)");
  stage_.frame(60, 50, 0);
  EXPECT_EQ(pendingError(), "Program has not been compiled yet.");
  initializeVolumeRenderer(handle_);
  scene.coloring = {{0xFF000000U, 0xFFFFFFFFU}, 0.0, 1.0};
  EXPECT_TRUE(agree(stage_.frame(60, 50, 0), referencePicture(scene), tolerance));
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(VolumeRendererApiTest, DualColoringNeedsASliceOfSecondaryData) {
  VolumeScene scene = smallScene();
  scene.mode = 3;
  EXPECT_TRUE(agree(stage_.draw(scene), background(60, 50), {1, 1.0, 1}));
  scene.secondary = testVolume(2, 10, 9);
  scene.secondaryColoring.colors = opaqueColors(8);
  EXPECT_TRUE(agree(stage_.draw(scene), referencePicture(scene), tolerance));
  for (const int index : {-1, 2}) {
    setRendererSecondarySliceIndex(handle_, index);
    EXPECT_TRUE(agree(stage_.frame(60, 50, 0), background(60, 50), {1, 1.0, 1}));
  }
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(VolumeRendererApiTest, AMapWithoutColorsShowsNothing) {
  const VolumeScene scene = smallScene();
  stage_.draw(scene);
  setRendererColormap(handle_, nullptr, 0);
  EXPECT_TRUE(agree(stage_.frame(60, 50, 0), background(60, 50), {1, 1.0, 1}));
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
  EXPECT_TRUE(agree(part, referencePicture(scene), tolerance));
}

}  // namespace
}  // namespace oct::test
