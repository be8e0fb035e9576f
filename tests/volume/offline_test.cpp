// Uploads of volumes: whole, in parts, overlays, secondary data, limits and misuse.
#include <gtest/gtest.h>

#include <functional>

#include "support/reference_camera.h"
#include "support/test_context.h"
#include "support/volume_reference.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

constexpr int width = 80;
constexpr int height = 60;
constexpr Tolerance tolerance{1, 0.99, 255};

VolumeScene baseScene() {
  VolumeScene scene = sceneOf(testVolume(14, 12, 10), width, height, 20.0, 40.0);
  scene.coloring = {opaqueColors(64), 0.0, 1.2};
  scene.mode = 1;
  return scene;
}

class OfflineTest : public testing::Test {
 protected:
  VolumeSource source() const { return reinterpret_cast<VolumeRenderer*>(stage_.renderer)->source(); }
  VolumeSettings settings() const { return reinterpret_cast<VolumeRenderer*>(stage_.renderer)->settings(); }

  testing::AssertionResult shows(const VolumeScene& scene, int content = 0) const {
    return agree(stage_.frame(width, height, content), referencePicture(scene), tolerance);
  }
  testing::AssertionResult showsBackground(int content = 0) const {
    return agree(stage_.frame(width, height, content), backgroundPicture(scene_), {1, 1.0, 1});
  }
  static void expectNoError() { EXPECT_EQ(pendingError(), "(none)"); }

  VolumeStage stage_;
  VolumeScene scene_ = baseScene();
};

TEST_F(OfflineTest, NullHandlesAreMisuse) {
  expectNullRefused("The specified OfflineRenderingHandle is invalid. ", setOfflineRenderingRenderer,
                    setOfflineAspectRatio, allocateOfflineVolume, uploadOfflineVolume,
                    uploadOfflineVolumeOverlay, uploadOfflineSubVolume, uploadOfflineVolumeSlice,
                    uploadOverlayOfflineVolume, renderOfflineVolume);
  expectNullRefused("The specified VolumeRendererHandle is invalid. ", uploadOfflineSecondaryData);
  clearOfflineRendering(nullptr);
  expectNoError();
}

TEST_F(OfflineTest, WithoutRendererNothingIsDrawnAndNothingAllocated) {
  const OfflineRenderingHandle alone = createOfflineRendering();
  const float value = 0.5F;
  renderOfflineVolume(alone, 0);
  expectNoError();
  renderOfflineVolume(alone, 3);
  EXPECT_EQ(pendingError(), "Content type is not supported for rendering. ");
  allocateOfflineVolume(alone, 1, 1, 1);
  EXPECT_EQ(pendingError(), "Attach a volume renderer before allocating a volume. ");
  uploadOfflineVolume(alone, &value);
  EXPECT_EQ(pendingError(), "Allocate a volume before uploading one. ");
  uploadOfflineSecondaryData(alone, 1, 1, 1, 0, 1, &value);
  EXPECT_EQ(pendingError(), "The specified VolumeRendererHandle is invalid. ");
  clearOfflineRendering(alone);
}

TEST_F(OfflineTest, RenderingBeforeAllocationDrawsTheRest) {
  apply(scene_, stage_.renderer);
  setOfflineAspectRatio(stage_.offline, 1.0F, 1.0F, 1.0F);
  setRenderElements(stage_.renderer, 1, 0);
  EXPECT_TRUE(showsBackground());
  expectNoError();
}

// No extent, no box: the scale of the model is not finite then.
TEST_F(OfflineTest, WithoutAnAspectRatioTheBackgroundIsDrawn) {
  stage_.draw(scene_);
  setBorder(stage_.renderer, 1, 1, 1);
  setClipPlane(stage_.renderer, 1, 0, 0.5F);
  setOfflineAspectRatio(stage_.offline, 0.0F, 0.0F, 0.0F);
  EXPECT_TRUE(showsBackground());
  setRenderingMode(stage_.renderer, 1);
  EXPECT_TRUE(showsBackground());
  expectNoError();
}

TEST_F(OfflineTest, UnknownContentDrawsNothing) {
  stage_.draw(scene_);
  Picture picture(width, height);
  beginOffscreenFrame(stage_.target, width, height);
  glClearColor(1.0F, 0.0F, 1.0F, 1.0F);
  glClear(GL_COLOR_BUFFER_BIT);
  for (const int content : {-1, 3}) {
    renderOfflineVolume(stage_.offline, content);
    EXPECT_EQ(pendingError(), "Content type is not supported for rendering. ");
  }
  finishOffscreenFrame(stage_.target, picture.bytes.data());
  EXPECT_EQ(picture.bgra(40, 30), (std::array<int, 4>{255, 0, 255, 255}));
}

TEST_F(OfflineTest, TheRangeComesWithTheFrame) {
  stage_.draw(scene_);
  setOfflineAspectRatio(stage_.offline, 2.0F, 1.0F, 1.0F);
  setRange(stage_.renderer, 5.0, 6.0, 7.0);
  stage_.frame();
  EXPECT_NEAR(settings().range.modelScale.y, -1.633, 5e-4);
  EXPECT_EQ(settings().range.extent, glm::vec3(2.0F, 1.0F, 1.0F));
}

TEST_F(OfflineTest, SameSizesKeepTheVolume) {
  stage_.draw(scene_);
  const GLuint texture = source().volume;
  allocateOfflineVolume(stage_.offline, 14, 12, 10);
  EXPECT_EQ(source().volume, texture);
  EXPECT_TRUE(shows(scene_));
  scene_.volume = testVolume(9, 21, 6);
  stage_.prepare(scene_);
  EXPECT_TRUE(shows(scene_, scene_.content));
  EXPECT_EQ(source().sliceCount, 6);
}

TEST_F(OfflineTest, PartsAddUpToTheWhole) {
  const Volume& volume = scene_.volume;
  apply(scene_, stage_.renderer);
  setOfflineAspectRatio(stage_.offline, 1.0F, 1.0F, 1.0F);
  allocateOfflineVolume(stage_.offline, volume.width, volume.height, volume.depth);
  const auto slice = [&](int index) {
    return volume.voxels.data() + static_cast<std::size_t>(index) * volume.sliceVoxels();
  };

  uploadOfflineSubVolume(stage_.offline, 0, 4, slice(0));
  EXPECT_EQ(source().filledFraction, 0.4F);
  EXPECT_TRUE(settings().renderVolume);
  scene_.slicesUploaded = 4;
  EXPECT_TRUE(shows(scene_));
  uploadOfflineSubVolume(stage_.offline, 4, 7, slice(4));
  scene_.slicesUploaded = 7;
  EXPECT_TRUE(shows(scene_));
  for (int i = 7; i < 10; ++i) {
    uploadOfflineVolumeSlice(stage_.offline, i, slice(i));
    EXPECT_EQ(source().filledFraction, static_cast<float>(i) / 10.0F);
  }
  // The last slice alone leaves the box one slice short.
  scene_.slicesUploaded = 9;
  EXPECT_TRUE(shows(scene_));
  uploadOfflineSubVolume(stage_.offline, 9, 10, slice(9));
  EXPECT_EQ(source().filledFraction, 1.0F);
  scene_.slicesUploaded = -1;
  EXPECT_TRUE(shows(scene_));
  expectNoError();
}

TEST_F(OfflineTest, ANullBlockEmptiesThePicture) {
  stage_.draw(scene_);
  setRenderingMode(stage_.renderer, 1);
  const Picture sections = stage_.frame();
  setRenderingMode(stage_.renderer, 0);
  uploadOfflineSubVolume(stage_.offline, 0, 10, nullptr);
  expectNoError();
  EXPECT_EQ(source().filledFraction, 0.0F);
  EXPECT_TRUE(showsBackground());
  setRenderingMode(stage_.renderer, 1);
  EXPECT_TRUE(agree(stage_.frame(), sections, exact)) << "slices are shown whole, whatever is filled";
  setRenderingMode(stage_.renderer, 0);
  uploadOfflineVolume(stage_.offline, scene_.volume.voxels.data());
  EXPECT_TRUE(shows(scene_));
}

TEST_F(OfflineTest, AnUploadShowsTheVolumeAndHidesTheSurface) {
  stage_.draw(scene_);
  std::uint64_t revision = source().revision;
  const auto hidden = [&](const char* what) {
    EXPECT_TRUE(settings().renderVolume) << what;
    EXPECT_FALSE(settings().renderSurface) << what;
    EXPECT_GT(source().revision, revision) << what;
    revision = source().revision;
    setRenderElements(stage_.renderer, 0, 1);
  };
  const float* const voxels = scene_.volume.voxels.data();
  setRenderElements(stage_.renderer, 0, 1);
  uploadOfflineVolume(stage_.offline, voxels);
  hidden("volume");
  uploadOfflineVolumeOverlay(stage_.offline, voxels);
  hidden("twin");
  uploadOfflineVolumeSlice(stage_.offline, 2, voxels);
  hidden("slice");
  uploadOfflineSubVolume(stage_.offline, 2, 3, voxels);
  hidden("part");

  // Other changes of voxels are counted too, and nothing else is.
  uploadOverlayOfflineVolume(stage_.offline, voxels);
  EXPECT_GT(source().revision, revision);
  revision = source().revision;
  setRendererColoringBoundaries(stage_.renderer, 0.0, 2.0);
  stage_.frame();
  EXPECT_EQ(source().revision, revision);
  clearVolumeRenderer(stage_.renderer);
  EXPECT_GT(source().revision, revision);
  revision = source().revision;
  allocateOfflineVolume(stage_.offline, 3, 3, 3);
  EXPECT_GT(source().revision, revision);
}

TEST_F(OfflineTest, TheTwinFillsTheVolumeToo) {
  stage_.draw(scene_);
  scene_.volume = testVolume(14, 12, 10, 5);
  uploadOfflineVolumeOverlay(stage_.offline, scene_.volume.voxels.data());
  EXPECT_TRUE(shows(scene_));
}

TEST_F(OfflineTest, MisuseChangesNothing) {
  stage_.draw(scene_);
  const float* const voxels = scene_.volume.voxels.data();
  uploadOfflineVolume(stage_.offline, nullptr);
  EXPECT_EQ(pendingError(), "Volume data must not be null. ");
  uploadOfflineVolumeSlice(stage_.offline, 0, nullptr);
  EXPECT_EQ(pendingError(), "Slice data must not be null. ");
  for (const int index : {-1, 10}) {
    uploadOfflineVolumeSlice(stage_.offline, index, voxels);
    EXPECT_EQ(pendingError(), "The slices lie outside the allocated volume. ");
  }
  for (const auto& [first, end] : {std::pair{5, 11}, {5, 4}, {-1, 4}}) {
    uploadOfflineSubVolume(stage_.offline, first, end, voxels);
    EXPECT_EQ(pendingError(), "The slices lie outside the allocated volume. ");
  }
  allocateOfflineVolume(stage_.offline, -1, 2, 2);
  EXPECT_EQ(pendingError(), "Volume sizes must not be negative. ");
  EXPECT_TRUE(shows(scene_));
}

TEST_F(OfflineTest, LimitsAreNamedAndTheVolumeStays) {
  stage_.draw(scene_);
  GLint limit = 0;
  glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &limit);
  allocateOfflineVolume(stage_.offline, 4, limit + 1, 4);
  const std::string text = std::to_string(limit);
  EXPECT_EQ(pendingError(), "A volume of 4 x " + std::to_string(limit + 1) +
                                " x 4 voxels is too large: this OpenGL driver allows " + text +
                                " voxels along each axis. ");
  allocateOfflineVolume(stage_.offline, limit, limit, limit);
  const std::string start =
      "A volume of " + text + " x " + text + " x " + text + " voxels needs a texture of ";
  EXPECT_EQ(pendingError().substr(0, start.size()), start);
  EXPECT_TRUE(shows(scene_));
  expectNoError();
}

TEST_F(OfflineTest, AVolumeWithoutVoxelsShowsNothing) {
  apply(scene_, stage_.renderer);
  setOfflineAspectRatio(stage_.offline, 1.0F, 1.0F, 1.0F);
  allocateOfflineVolume(stage_.offline, 0, 4, 4);
  const float value = 1.0F;
  uploadOfflineVolume(stage_.offline, &value);
  EXPECT_TRUE(showsBackground());
  expectNoError();
}

TEST_F(OfflineTest, OverlaysComeAndGo) {
  scene_.overlay = testVolume(14, 12, 10, 3);
  scene_.overlayColoring = {rampColors(16, 1.0), 0.2, 1.1};
  scene_.mode = 0;
  scene_.content = 2;
  stage_.prepare(scene_);
  EXPECT_TRUE(shows(scene_, scene_.content));
  uploadOverlayOfflineVolume(stage_.offline, nullptr);
  VolumeScene plain = scene_;
  plain.content = 0;
  EXPECT_TRUE(shows(plain, 2)) << "no overlay to lay over";
  EXPECT_TRUE(showsBackground(1));
  uploadOverlayOfflineVolume(stage_.offline, scene_.overlay.voxels.data());
  EXPECT_TRUE(shows(scene_, 2));
  expectNoError();
}

TEST_F(OfflineTest, SecondaryDataComesInBlocks) {
  scene_.secondary = testVolume(3, 12, 10, 4);
  scene_.secondaryColoring.colors = opaqueColors(8);
  scene_.secondaryIndex = 2;
  scene_.mode = 3;
  stage_.prepare(scene_);
  EXPECT_TRUE(shows(scene_));
  EXPECT_EQ(source().secondarySliceCount, 3);

  const float* const data = scene_.secondary.voxels.data();
  uploadOfflineSecondaryData(stage_.offline, 12, 10, 3, 0, 10, nullptr);
  EXPECT_EQ(source().secondary, 0U);
  uploadOfflineSecondaryData(stage_.offline, 12, 10, 3, 4, 6, data + 4 * 36);
  EXPECT_EQ(pendingError(), "The first block of secondary data must start at 0. ");
  uploadOfflineSecondaryData(stage_.offline, 12, 10, 3, 0, 4, data);
  uploadOfflineSecondaryData(stage_.offline, 12, 10, 3, 4, 6, data + 4 * 36);
  expectNoError();
  EXPECT_TRUE(shows(scene_));
  uploadOfflineSecondaryData(stage_.offline, 12, 10, 3, 4, 7, data);
  EXPECT_EQ(pendingError(), "The secondary data lies outside its texture. ");
  uploadOfflineSecondaryData(stage_.offline, 12, 10, 3, 0xFFFFFFFFU, 1, data);
  EXPECT_EQ(pendingError(), "The secondary data lies outside its texture. ");
  EXPECT_TRUE(shows(scene_));
}

// A client may leave pixel transfer settings of its own in the context.
TEST_F(OfflineTest, UploadsReadPackedMemory) {
  apply(scene_, stage_.renderer);
  glPixelStorei(GL_UNPACK_ROW_LENGTH, 50);
  glPixelStorei(GL_UNPACK_IMAGE_HEIGHT, 70);
  glPixelStorei(GL_UNPACK_SKIP_IMAGES, 1);
  stage_.prepare(scene_);
  EXPECT_TRUE(shows(scene_, scene_.content));
}

}  // namespace
}  // namespace oct::test
