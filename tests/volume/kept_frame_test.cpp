// A frame that equals the last one is copied: whatever changes after it shows, colours and depths alike.
#include <algorithm>
#include <functional>

#include "volume_test.h"

namespace oct::test {
namespace {

// What a target shows after a frame, and its depths.
struct Shown {
  Picture picture{80, 60};
  std::vector<float> depths = std::vector<float>(std::size_t{80} * 60);
};

Shown frame_of(const VolumeStage& stage, int content) {
  Shown shown;
  beginOffscreenFrame(stage.target, 80, 60);
  renderOfflineVolume(stage.offline, content);
  GLint framebuffer = 0;
  glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &framebuffer);
  glBindFramebuffer(GL_READ_FRAMEBUFFER, static_cast<GLuint>(framebuffer));
  glReadPixels(0, 0, 80, 60, GL_DEPTH_COMPONENT, GL_FLOAT, shown.depths.data());
  glBindFramebuffer(GL_READ_FRAMEBUFFER, 0);
  finishOffscreenFrame(stage.target, shown.picture.bytes.data());
  return shown;
}

// Extents of 0 come from devices that fail, and from clients.
TEST_F(VolumeTest, AFlatVolumeShowsWhatAThinOneShows) {
  for (const bool perspective : {true, false}) {
    for (const int axis : {0, 2}) {
      scene_.perspective = perspective;
      scene_.angle_x = axis == 0 ? 90.0 : 10.0;
      scene_.angle_y = 15.0;
      scene_.range = {1.0F, 1.0F, 1.0F};
      scene_.range[static_cast<std::size_t>(axis)] = 1e-4F;
      const Picture thin = stage_.draw(scene_);
      scene_.range[static_cast<std::size_t>(axis)] = 0.0F;
      EXPECT_TRUE(agree(stage_.draw(scene_), thin, {2, 0.98, 255})) << axis;
      EXPECT_FALSE(shows_background());
    }
  }
}

TEST_F(VolumeTest, WhateverChangesShowsAfterFramesThatWereCopied) {
  const Volume other = test_volume(14, 12, 10, 99);
  Volume mirrored = other;
  std::ranges::reverse(mirrored.voxels);
  const std::vector<float> heights(16, 0.4F);
  const std::vector<float> other_heights(16, 0.7F);
  const auto opaque = opaque_colors(16);
  const auto clear = ramp_colors(16, 0.7);
  int content = 0;
  struct Change {
    const char* name;
    std::function<void(const VolumeStage&)> make;
  };
  const auto of_renderer = [](auto function, auto... values) {
    return [=](const VolumeStage& stage) { function(stage.renderer, values...); };
  };
  const auto secondary = [&](const float* data) {
    return
        [=](const VolumeStage& stage) { uploadOfflineSecondaryData(stage.offline, 12, 10, 14, 0, 10, data); };
  };
  const Change changes[] = {
      {"angles", of_renderer(setAngles, 25.0, 30.0)},
      {"translation", of_renderer(setTranslation, 0.1, 0.0, 0.0)},
      {"range", [](const VolumeStage& stage) { setOfflineAspectRatio(stage.offline, 1.0F, 2.0F, 1.5F); }},
      {"zoom", of_renderer(setZoom, 35.0)},
      {"projection", of_renderer(setUsePerspective, false)},
      {"slice",
       [&](const VolumeStage& stage) { uploadOfflineVolumeSlice(stage.offline, 9, other.voxels.data()); }},
      {"volume", [&](const VolumeStage& stage) { uploadOfflineVolume(stage.offline, other.voxels.data()); }},
      {"block",
       [&](const VolumeStage& stage) {
         uploadOfflineSubVolume(stage.offline, 0, 7, other.voxels.data() + 30);
       }},
      {"rest",
       [&](const VolumeStage& stage) { uploadOfflineSubVolume(stage.offline, 7, 10, other.voxels.data()); }},
      {"colours", of_renderer(setRendererColormap, static_cast<const void*>(clear.data()), 16)},
      {"mode", of_renderer(setVolumeMode, 0)},
      {"slices", of_renderer(setRenderingSlices, 40)},
      {"boundaries", of_renderer(setRendererColoringBoundaries, 0.1, 1.3)},
      {"clip plane", of_renderer(setClipPlane, 1, 0, 0.5F)},
      {"cut", of_renderer(setClipPlane, 1, 1, 0.6F)},
      {"ghost", of_renderer(setRemoveSegment, 1)},
      {"overlay",
       [&](const VolumeStage& stage) {
         uploadOverlayOfflineVolume(stage.offline, mirrored.voxels.data()), content = 2;
       }},
      {"overlay's boundaries", of_renderer(setOverlayRendererColoringBoundaries, 0.2, 0.7)},
      {"overlay's colours",
       of_renderer(setOverlayRendererColormap, static_cast<const void*>(opaque.data()), 16)},
      {"surface",
       [&](const VolumeStage& stage) {
         setSurface(stage.renderer, 4, 4, 1.0, heights.data());
         setRenderElements(stage.renderer, 1, 1);
       }},
      {"other surface", of_renderer(setSurface, 4, 4, 1.0, other_heights.data())},
      {"dual colouring",
       [&](const VolumeStage& stage) {
         secondary(other.voxels.data())(stage);
         setVolumeMode(stage.renderer, 3);
       }},
      {"other secondary data", secondary(scene_.volume.voxels.data())},
      {"secondary slice", of_renderer(setRendererSecondarySliceIndex, 3)},
      {"secondary boundaries", of_renderer(setRendererSecondaryColoringBoundaries, 0.0, 3.0)},
      {"edges", of_renderer(setBorder, 1, 1, 1)},
      {"foreground", of_renderer(setRenderForeground, 0xFF00FFFFU)},
      {"background", of_renderer(setRenderBackground, 0x102030FFU, 0x00FF00FFU)},
      {"sections", of_renderer(setRenderingMode, 1)},
      {"section", of_renderer(setSectionalView, 1, 0.3F, 1, 0.4F, 0, 0.5F)},
      {"nothing", of_renderer(clearVolumeRenderer)},
  };
  VolumeStage drawn;  // the same, but no frame equals the last one
  for (VolumeStage* const stage : {&stage_, &drawn}) {
    beginOffscreenFrame(stage->target, 80, 60);
    stage->prepare(scene_);
    finishOffscreenFrame(stage->target, nullptr);
  }
  Picture before(80, 60);
  for (const Change& change : changes) {
    SCOPED_TRACE(change.name);
    for (VolumeStage* const stage : {&stage_, &drawn}) {
      beginOffscreenFrame(stage->target, 80, 60);
      change.make(*stage);
      finishOffscreenFrame(stage->target, nullptr);
    }
    beginOffscreenFrame(drawn.target, 40, 30);
    renderOfflineVolume(drawn.offline, content);
    finishOffscreenFrame(drawn.target, nullptr);
    const Shown expected = frame_of(drawn, content);
    EXPECT_NE(expected.picture.bytes, before.bytes) << "the change shows";
    before = expected.picture;
    for (int i = 0; i < 3; ++i) {
      const Shown found = frame_of(stage_, content);
      EXPECT_TRUE(agree(found.picture, expected.picture, exact)) << "frame " << i;
      EXPECT_TRUE(found.depths == expected.depths) << "frame " << i;
    }
  }
  expect_no_error();
}

}  // namespace
}  // namespace oct::test
