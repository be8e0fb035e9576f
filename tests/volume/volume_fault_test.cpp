// What fails is reported, leaves no half-made state, and the next attempt works. And what need not be done is
// not.
#include "support/gl_spy.h"
#include "volume/volume_test.h"

namespace oct::test {
namespace {

class VolumeFaultTest : public VolumeTest {
 protected:
  void expectScene(int content = 0) {
    EXPECT_TRUE(shows(scene_, content));
    expectNoError();
  }
  static void expectErrorOf(const std::string& place) {
    const std::string error = pendingError();
    EXPECT_EQ(error.find("An OpenGL error in " + place + " occured: "), 0U) << error;
  }
};

TEST_F(VolumeFaultTest, AFrameThatFailsIsTheOnlyOne) {
  struct Case {
    const char* function;
    const char* error;
  };
  for (const auto& [function, error] :
       {Case{"glCheckFramebufferStatus",
             "An OpenGL error occured. Framebuffer is not complete: GL_FRAMEBUFFER_UNSUPPORTED"},
        Case{"glGenBuffers", "Could not create OpenGL buffer. "}}) {
    stage_.restart();
    stage_.prepare(scene_);
    beginOffscreenFrame(stage_.target, 80, 60);
    {
      GlSpy spy;
      spy.failNext(function, 1, GL_FRAMEBUFFER_UNSUPPORTED);
      renderOfflineVolume(offline_, 0);
      EXPECT_EQ(pendingError(), error);
    }
    clearGLErrors();
    expectScene();
  }
}

TEST_F(VolumeFaultTest, AFailedAllocationLeavesNoVolume) {
  stage_.draw(scene_);
  GlSpy spy;
  const std::string needs = "20 x 20 x 20 voxels needs a texture of 1 MB";
  spy.failNext("3-D proxy");
  allocateOfflineVolume(offline_, 20, 20, 20);
  EXPECT_EQ(pendingError(), "A volume of " + needs + ", more than this OpenGL driver allows. ");
  expectScene();

  spy.failNext("glTexImage3D");
  allocateOfflineVolume(offline_, 20, 20, 20);
  const std::string error = pendingError();
  EXPECT_EQ(error.find("An OpenGL error in OfflineVolumeRendering::allocate, glTexImage3D occured: "), 0U);
  EXPECT_TRUE(contains(error, needs)) << error;
  EXPECT_EQ(source().volume, 0U);
  uploadOfflineVolume(offline_, scene_.volume.voxels.data());
  EXPECT_EQ(pendingError(), "Allocate a volume before uploading one. ");
  frame();
  expectNoError();
  // The very sizes that failed, and then the scene's.
  allocateOfflineVolume(offline_, 20, 20, 20);
  expectNoError();
  stage_.prepare(scene_);
  expectScene();
}

TEST_F(VolumeFaultTest, AFailedUploadIsReported) {
  stage_.draw(scene_);
  const float* const voxels = scene_.volume.voxels.data();
  GlSpy spy;
  spy.failNext("glTexImage3D");
  uploadOverlayOfflineVolume(offline_, voxels);
  expectErrorOf("OfflineVolumeRendering::allocate_overlay");
  expectScene(2);
  uploadOverlayOfflineVolume(offline_, voxels);
  expectNoError();
  spy.failNext("glTexSubImage3D");
  uploadOfflineVolume(offline_, voxels);
  expectErrorOf("OfflineVolumeRendering::upload");
}

TEST_F(VolumeFaultTest, ProgramsAndColorsLiveFromInitToUninit) {
  stage_.prepare(scene_);
  initializeVolumeRenderer(renderer_);  // again: the colours stay
  expectScene();
  uninitializeVolumeRenderer(renderer_);
  setRendererColormap(renderer_, scene_.coloring.colors.data(), 32);
  setRendererColoringBoundaries(renderer_, 0.3, 0.4);
  expectNoError();
  {
    GlSpy spy;
    spy.failNext("glGetProgramBinary");
    spy.failNext("glProgramBinary");  // the cache holds all programs by now
    initializeVolumeRenderer(renderer_);
    expectErrorOf("BinaryShader::load_to_program");
    EXPECT_EQ(spy.liveObjects(), 0U);
  }
  frame();
  EXPECT_EQ(pendingError(), "Program has not been compiled yet.");
  initializeVolumeRenderer(renderer_);
  scene_.coloring = {{0xFF000000U, 0xFFFFFFFFU}, 0.0, 1.0};
  expectScene();
}

TEST_F(VolumeFaultTest, AFrameWithoutChangesRebuildsNothing) {
  stage_.draw(scene_);
  GlSpy spy;
  beginOffscreenFrame(stage_.target, 80, 60);
  const auto calls = [&] {
    return std::array{spy.calls("glBufferData"), spy.calls("glTexImage1D"), spy.calls("glTexImage2D"),
                      spy.calls("glTexImage3D")};
  };
  const auto before = calls();
  renderOfflineVolume(offline_, 0);
  EXPECT_EQ(calls(), before);
  finishOffscreenFrame(stage_.target, nullptr);

  setRendererColormap(renderer_, scene_.coloring.colors.data(), 4);
  frame();
  frame();
  EXPECT_EQ(spy.calls("glTexImage1D"), 1);
  EXPECT_EQ(spy.calls("glTexImage2D"), 0);
  stage_.frame(81, 60, 0);
  stage_.frame(81, 60, 0);
  EXPECT_EQ(spy.calls("glTexImage2D"), 1) << "the back faces have the viewport's size";
}

}  // namespace
}  // namespace oct::test
