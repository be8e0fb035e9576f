// The volume renderer as its exports give it: handles, checks, what it
// remembers, and what a frame consists of.
#include <cmath>

#include "support/mark_recorder.h"
#include "volume/volume_test.h"

namespace oct::test {
namespace {

using VolumeRendererApiTest = VolumeTest;

// Those of a scene that nobody has changed.
TEST_F(VolumeRendererApiTest, DefaultsAreThoseOfANewObject) {
  const FrameFlags flags = settings().frame;
  EXPECT_TRUE(flags.edges && flags.scale_marks && flags.box);
  EXPECT_FALSE(settings().render_volume || settings().render_surface);
  setBorder(renderer_, 0, 0, 0);
  scene_ = scene_of(scene_.volume, 80, 60);
  EXPECT_TRUE(shows_background());
  upload(scene_, offline_);
  EXPECT_TRUE(shows(scene_));
}

TEST_F(VolumeRendererApiTest, WhatIsWrongIsRefusedAndWhatIsRightIsKept) {
  expect_null_refused(
      "The specified VolumeRendererHandle is invalid. ", deleteVolumeRenderer, initializeVolumeRenderer,
      uninitializeVolumeRenderer, clearVolumeRenderer, setAngles, setTranslation, setRange, setZoom,
      setRenderingSlices, setUsePerspective, setLateralVoxelsPerPixel, setRenderingMode, setVolumeMode,
      setSectionalView, setClipPlane, fixClipPlane, setBorder, setRemoveSegment, setRenderElements,
      setRenderBackground, setRenderForeground, setRendererColormap, setRendererSecondaryColormap,
      setOverlayRendererColormap, setSurfaceColormap, setRendererColoringBoundaries,
      setRendererSecondaryColoringBoundaries, setOverlayRendererColoringBoundaries,
      setRendererSecondarySliceIndex, setSurface, setSurfaceDepths);
  setVolumeMode(renderer_, 2);
  setRenderingMode(renderer_, 1);
  setSectionalView(renderer_, 1, 1.0F, 1, 0.0F, 1, 0.5F);
  setAngles(renderer_, 190.0, -190.0);
  setRenderForeground(renderer_, 0x33669900U);
  expect_no_error();
  const std::string mode = "Invalid rendering mode selected.";
  const std::string position =
      "Slice positions of sectional view are out of range. Values must be in range from 0.0 to 1.0. ";
  const float value = 1.0F;
  const auto h = renderer_;
  expect_refused({
      {mode, [h] { setVolumeMode(h, -1); }},
      {mode, [h] { setVolumeMode(h, 4); }},
      {mode, [h] { setRenderingMode(h, -1); }},
      {mode, [h] { setRenderingMode(h, 2); }},
      {"The number of rendering slices must not be negative. ", [h] { setRenderingSlices(h, -1); }},
      {position, [h] { setSectionalView(h, 1, 1.0001F, 1, 0.0F, 1, 0.0F); }},
      {position, [h] { setSectionalView(h, 1, 0.0F, 1, -0.0001F, 1, 0.0F); }},
      {position, [h] { setSectionalView(h, 1, 0.0F, 1, 0.0F, 0, std::nanf("")); }},
      {"Colour map data must not be null. ", [h] { setRendererColormap(h, nullptr, 3); }},
      {"The number of colours must not be negative. ", [h] { setSurfaceColormap(h, nullptr, -1); }},
      {"The size of a surface must not be negative. ", [&] { setSurface(h, -1, 3, 1.0, &value); }},
      {"The size of a surface must not be negative. ", [&] { setSurface(h, 3, -1, 1.0, &value); }},
      {"Surface data must not be null. ", [h] { setSurface(h, 3, 3, 1.0, nullptr); }},
      {"The scale of a surface must be a number other than zero. ",
       [&] { setSurface(h, 3, 3, 0.0, &value); }},
      {"The surface has too many samples. ", [&] { setSurface(h, 65536, 65536, 1.0, &value); }},
  });
  const VolumeSettings settings = this->settings();
  EXPECT_EQ(settings.volume_mode, VolumeMode::mean);
  EXPECT_EQ(settings.rendering_mode, RenderingMode::sectional_view);
  EXPECT_EQ(settings.slices, 128);
  EXPECT_EQ(settings.view.angle_x, -170.0F) << "angles are wrapped";
  EXPECT_EQ(settings.view.angle_y, 170.0F);
  EXPECT_EQ(settings.foreground, glm::vec4(0.2F, 0.4F, 0.6F, 1.0F)) << "colours are opaque";
}

TEST_F(VolumeRendererApiTest, WhereThereIsNothingToShowTheBackgroundIs) {
  const auto h = renderer_;
  const auto add_secondary = [&] {
    VolumeScene scene = scene_;
    scene.mode = 3;
    scene.secondary = test_volume(2, 12, 10);
    scene.secondary_coloring.colors = opaque_colors(8);
    stage_.prepare(scene);
    EXPECT_TRUE(shows(scene));
  };
  struct Case {
    const char* name;
    std::function<void()> change;
    int content = 0;
  };
  const float value = 1.0F;
  const Case cases[] = {
      {"a range without extent, and so a scale that is not finite",
       [&] {
         setOfflineAspectRatio(offline_, 0.0F, 0.0F, 0.0F);
         setBorder(h, 1, 1, 1);
         setClipPlane(h, 1, 0, 0.5F);
         EXPECT_TRUE(shows_background());
         setRenderingMode(h, 1);
       }},
      {"a volume without voxels",
       [&] { allocateOfflineVolume(offline_, 0, 4, 4), uploadOfflineVolume(offline_, &value); }},
      {"an empty block", [&] { uploadOfflineSubVolume(offline_, 0, 10, nullptr); }},
      {"no overlay", [] {}, 1},
      {"no colours", [&] { setRendererColormap(h, nullptr, 0); }},
      {"no secondary data", [&] { setVolumeMode(h, 3); }},
      {"before the first secondary image", [&] { add_secondary(), setRendererSecondarySliceIndex(h, -1); }},
      {"after the last secondary image", [&] { add_secondary(), setRendererSecondarySliceIndex(h, 2); }},
      {"cleared", [&] { clearVolumeRenderer(h); }},
  };
  apply(scene_, h);
  setRenderElements(h, 1, 0);
  EXPECT_TRUE(shows_background()) << "before a volume is allocated";
  for (const auto& [name, change, content] : cases) {
    SCOPED_TRACE(name);
    stage_.prepare(scene_);
    EXPECT_TRUE(shows(scene_));
    change();
    EXPECT_TRUE(shows_background(content));
    expect_no_error();
  }
  setRenderElements(h, 1, 0);
  EXPECT_TRUE(shows(scene_)) << "the volume is still there";
}

TEST_F(VolumeRendererApiTest, AFrameMarksItsPassesInTheirOrder) {
  scene_.clip = true;
  scene_.clip_value = 0.6F;
  stage_.draw(scene_);
  setBorder(renderer_, 0, 1, 1);
  setRendererColormap(renderer_, scene_.coloring.colors.data(), 3);
  beginOffscreenFrame(stage_.target, 60, 50);
  using Names = MarkRecorder::Marks;
  const auto marks_of_frame = [&] {
    MarkRecorder recorder;
    renderOfflineVolume(offline_, 0);
    Names names = recorder.all().begin()->second;
    std::erase_if(names, [](const std::string& name) { return name[0] == '-'; });
    for (std::string& name : names) name.erase(0, 1);
    return names;
  };
  EXPECT_EQ(
      marks_of_frame(),
      (Names{"OfflineRendering::render", "VolumeRenderer::render", "render: init", "render: colormap changed",
             "VolumeRenderer::render_elements", "VolumeRenderer::render_frame",
             "VolumeRenderer::render_clip_plane_border", "VolumeRenderer::render_clip_plane_border",
             "render_raycasting::drawing", "VolumeRenderer::render_clip_plane_border",
             "VolumeRenderer::render_clip_plane_border::draw_overlay", "VolumeRenderer::render_elements",
             "VolumeRenderer::render_frame"}));
  setRenderingMode(renderer_, 1);
  EXPECT_EQ(marks_of_frame(),
            (Names{"OfflineRendering::render", "VolumeRenderer::render", "render: init",
                   "VolumeRenderer::render_elements", "VolumeRenderer::render_frame",
                   "VolumeRenderer::render_sectional_view", "VolumeRenderer::render_sectional_view",
                   "VolumeRenderer::render_sectional_view", "VolumeRenderer::render_elements",
                   "VolumeRenderer::render_frame"}));
  setViewportSize(13, 7);
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 13, 7}));
  finishOffscreenFrame(stage_.target, nullptr);
  expect_no_error();
}

}  // namespace
}  // namespace oct::test
