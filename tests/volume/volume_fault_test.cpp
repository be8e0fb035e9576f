// What fails is reported, leaves no half-made state, and the next attempt works. And what need not be done is
// not.
#include <gtest/gtest.h>

#include "support/gl_spy.h"
#include "support/test_context.h"
#include "support/volume_reference.h"
#include "volume/volume_renderer.h"

namespace oct::test {
namespace {

VolumeScene faultScene() {
  VolumeScene scene = sceneOf(testVolume(10, 11, 12), 50, 40, 10.0, 20.0);
  scene.coloring = {opaqueColors(16), 0.0, 1.0};
  scene.mode = 1;
  return scene;
}

class VolumeFaultTest : public testing::Test {
 protected:
  void expectScene(int content = 0) {
    EXPECT_TRUE(agree(stage_.frame(50, 40, content), referencePicture(scene_), {1, 0.98, 255}));
    EXPECT_EQ(pendingError(), "(none)");
  }

  VolumeScene scene_ = faultScene();
  VolumeStage stage_;
};

TEST_F(VolumeFaultTest, AnIncompleteFramebufferFailsOneFrame) {
  stage_.draw(scene_);
  {
    beginOffscreenFrame(stage_.target, 50, 40);
    GlSpy spy;
    spy.failNext("glCheckFramebufferStatus", 1, GL_FRAMEBUFFER_UNSUPPORTED);
    renderOfflineVolume(stage_.offline, 0);
    EXPECT_EQ(pendingError(),
              "An OpenGL error occured. Framebuffer is not complete: GL_FRAMEBUFFER_UNSUPPORTED");
  }
  expectScene();
}

TEST_F(VolumeFaultTest, AFailedAllocationLeavesNoVolume) {
  stage_.draw(scene_);
  GlSpy spy;
  spy.failNext("glTexImage3D");
  allocateOfflineVolume(stage_.offline, 20, 20, 20);
  const std::string error = pendingError();
  EXPECT_EQ(error.find("An OpenGL error in OfflineVolumeRendering::allocate, glTexImage3D occured: "), 0U);
  EXPECT_TRUE(contains(error, "20 x 20 x 20 voxels needs a texture of 1 MB")) << error;
  EXPECT_EQ(reinterpret_cast<VolumeRenderer*>(stage_.renderer)->source().volume, 0U);
  const float value = 1.0F;
  uploadOfflineVolume(stage_.offline, &value);
  EXPECT_EQ(pendingError(), "Allocate a volume before uploading one. ");
  stage_.frame(50, 40, 0);
  EXPECT_EQ(pendingError(), "(none)");
  // The very sizes that failed, and then the scene's.
  allocateOfflineVolume(stage_.offline, 20, 20, 20);
  EXPECT_EQ(pendingError(), "(none)");
  stage_.prepare(scene_);
  expectScene();
}

TEST_F(VolumeFaultTest, ARefusedProxyKeepsTheVolume) {
  stage_.draw(scene_);
  GlSpy spy;
  spy.failNext("3-D proxy");
  allocateOfflineVolume(stage_.offline, 20, 20, 20);
  EXPECT_EQ(pendingError(),
            "A volume of 20 x 20 x 20 voxels needs a texture of 1 MB, more than this OpenGL driver allows. ");
  expectScene();
}

TEST_F(VolumeFaultTest, AFailedOverlayLeavesNone) {
  stage_.draw(scene_);
  GlSpy spy;
  spy.failNext("glTexImage3D");
  uploadOverlayOfflineVolume(stage_.offline, scene_.volume.voxels.data());
  EXPECT_EQ(pendingError().find("An OpenGL error in OfflineVolumeRendering::allocate_overlay occured: "), 0U);
  expectScene(2);
  uploadOverlayOfflineVolume(stage_.offline, scene_.volume.voxels.data());
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(VolumeFaultTest, AFailedUploadIsReported) {
  stage_.draw(scene_);
  GlSpy spy;
  spy.failNext("glTexSubImage3D");
  uploadOfflineVolume(stage_.offline, scene_.volume.voxels.data());
  EXPECT_EQ(pendingError().find("An OpenGL error in OfflineVolumeRendering::upload occured: "), 0U);
}

TEST_F(VolumeFaultTest, AMissingBufferFailsOneFrame) {
  stage_.prepare(scene_);
  {
    GlSpy spy;
    spy.failNext("glGenBuffers");
    stage_.frame(50, 40, 0);
    EXPECT_EQ(pendingError(), "Could not create OpenGL buffer. ");
  }
  expectScene();
}

TEST_F(VolumeFaultTest, AProgramThatDoesNotCompileLeavesTheRendererUninitialised) {
  uninitializeVolumeRenderer(stage_.renderer);
  {
    GlSpy spy;
    spy.failNext("glGetProgramBinary");
    spy.failNext("glProgramBinary");  // the cache holds all programs by now
    initializeVolumeRenderer(stage_.renderer);
    EXPECT_EQ(pendingError().find("An OpenGL error in BinaryShader::load_to_program occured: "), 0U);
  }
  upload(scene_, stage_.offline);
  stage_.frame(50, 40, 0);
  EXPECT_EQ(pendingError(), "Program has not been compiled yet.");
  initializeVolumeRenderer(stage_.renderer);
  stage_.prepare(scene_);
  expectScene();
}

TEST_F(VolumeFaultTest, AFrameWithoutChangesRebuildsNothing) {
  stage_.draw(scene_);
  GlSpy spy;
  beginOffscreenFrame(stage_.target, 50, 40);
  const int buffers = spy.calls("glBufferData");
  const int textures = spy.calls("glTexImage2D");
  renderOfflineVolume(stage_.offline, 0);
  EXPECT_EQ(spy.calls("glBufferData"), buffers);
  EXPECT_EQ(spy.calls("glTexImage1D"), 0);
  EXPECT_EQ(spy.calls("glTexImage2D"), textures);
  EXPECT_EQ(spy.calls("glTexImage3D"), 0);
  finishOffscreenFrame(stage_.target, nullptr);

  setRendererColormap(stage_.renderer, scene_.coloring.colors.data(), 4);
  stage_.frame(50, 40, 0);
  stage_.frame(50, 40, 0);
  EXPECT_EQ(spy.calls("glTexImage1D"), 1);
  EXPECT_EQ(spy.calls("glTexImage2D"), 0);
  stage_.frame(51, 40, 0);
  stage_.frame(51, 40, 0);
  EXPECT_EQ(spy.calls("glTexImage2D"), 1) << "the back faces have the viewport's size";
}

TEST_F(VolumeFaultTest, NothingIsLeftBehind) {
  GlSpy spy;
  {
    VolumeStage stage;
    scene_.overlay = scene_.volume;
    scene_.secondary = scene_.volume;
    scene_.clip = true;
    scene_.clipValue = 0.5F;
    scene_.content = 2;
    stage.prepare(scene_);
    setBorder(stage.renderer, 1, 1, 1);
    const std::vector<float> heights(16, 0.5F);
    setSurface(stage.renderer, 4, 4, 1.0, heights.data());
    setRenderElements(stage.renderer, 1, 1);
    for (const int mode : {0, 1}) {
      setRenderingMode(stage.renderer, mode);
      stage.frame();
    }
    EXPECT_EQ(pendingError(), "(none)");
    EXPECT_GT(spy.liveObjects(), 20U);
  }
  EXPECT_EQ(spy.liveObjects(), 0U);
}

TEST(VolumeObjectsTest, ARendererDeletedWithItsContextCurrentDeletesItsObjects) {
  const OffscreenTargetHandle target = createOffscreenTarget();
  GlSpy spy;
  const VolumeRendererHandle renderer = createVolumeRenderer();
  initializeVolumeRenderer(renderer);
  EXPECT_GT(spy.liveObjects(), 10U);
  deleteVolumeRenderer(renderer);
  EXPECT_EQ(spy.liveObjects(), 0U);
  clearOffscreenTarget(target);
}

}  // namespace
}  // namespace oct::test
