// What fails is reported, leaves no half-made state, and the next attempt works.
#include "support/gl_spy.h"
#include "volume/volume_test.h"

namespace oct::test {
namespace {

class VolumeFaultTest : public VolumeTest {
 protected:
  void expect_scene(int content = 0) {
    EXPECT_TRUE(shows(scene_, content));
    expect_no_error();
  }
  static void expect_error_of(const std::string& place) {
    const std::string error = pending_error();
    EXPECT_EQ(error.find("An OpenGL error in " + place + " occured: "), 0U) << error;
  }
};

TEST_F(VolumeFaultTest, AFrameThatFailsIsTheOnlyOne) {
  scene_.scale_marks = scene_.edges = scene_.box = true;
  const auto expect_recovery = [this](const char* function, int times, const std::string& error) {
    const Picture good = stage_.draw(scene_);
    stage_.restart();
    stage_.prepare(scene_);
    beginOffscreenFrame(stage_.target, 80, 60);
    {
      GlSpy spy;
      spy.fail_next(function, times, GL_FRAMEBUFFER_UNSUPPORTED);
      renderOfflineVolume(offline_, 0);
      EXPECT_GE(spy.calls(function), 1);
    }
    EXPECT_EQ(pending_error().find(error), 0U) << times;
    gl::discard_gl_errors();
    stage_.restart();
    EXPECT_TRUE(agree(stage_.draw(scene_), good, exact));
    expect_no_error();
  };
  expect_recovery("glCheckFramebufferStatus", 1,
                  "An OpenGL error occured. Framebuffer is not complete: GL_FRAMEBUFFER_UNSUPPORTED");
  expect_recovery("glGenBuffers", 1, "Could not create OpenGL buffer. ");
  for (const bool sectional : {false, true}) {
    scene_.sectional = sectional;
    for (int times = 1; times < 12; ++times) expect_recovery("glBufferData", times, "An OpenGL error in ");
  }
}

TEST_F(VolumeFaultTest, AFailedAllocationLeavesNoVolume) {
  stage_.draw(scene_);
  GlSpy spy;
  const std::string needs = "20 x 20 x 20 voxels needs a texture of 1 MB";
  spy.fail_next("3-D proxy");
  allocateOfflineVolume(offline_, 20, 20, 20);
  EXPECT_EQ(pending_error(), "A volume of " + needs + ", more than this OpenGL driver allows. ");
  expect_scene();

  spy.fail_next("glTexImage3D");
  allocateOfflineVolume(offline_, 20, 20, 20);
  const std::string error = pending_error();
  EXPECT_EQ(error.find("An OpenGL error in OfflineVolumeRendering::allocate, glTexImage3D occured: "), 0U);
  EXPECT_TRUE(contains(error, needs)) << error;
  EXPECT_EQ(source().volume, 0U);
  uploadOfflineVolume(offline_, scene_.volume.voxels.data());
  EXPECT_EQ(pending_error(), "Allocate a volume before uploading one. ");
  frame();
  expect_no_error();
  // The very sizes that failed, and then the scene's.
  allocateOfflineVolume(offline_, 20, 20, 20);
  expect_no_error();
  stage_.prepare(scene_);
  expect_scene();
}

TEST_F(VolumeFaultTest, AFailedUploadIsReportedAndNoOverlayIsLaidOver) {
  scene_.mode = 0;
  stage_.draw(scene_);
  const float* const voxels = scene_.volume.voxels.data();
  GlSpy spy;
  spy.fail_next("glTexImage3D");
  uploadOverlayOfflineVolume(offline_, voxels);
  expect_error_of("OfflineVolumeRendering::allocate_overlay");
  expect_scene(2);
  VolumeScene both = scene_;
  both.overlay = scene_.volume;
  both.content = 2;
  uploadOverlayOfflineVolume(offline_, voxels);
  EXPECT_TRUE(shows(both, 2));
  uploadOverlayOfflineVolume(offline_, nullptr);
  expect_scene(2);
  spy.fail_next("glTexSubImage3D");
  uploadOfflineVolume(offline_, voxels);
  expect_error_of("OfflineVolumeRendering::upload");
}

TEST_F(VolumeFaultTest, ProgramsAndColorsLiveFromInitToUninit) {
  stage_.prepare(scene_);
  initializeVolumeRenderer(renderer_);  // again: the colours stay
  expect_scene();
  uninitializeVolumeRenderer(renderer_);
  setRendererColormap(renderer_, scene_.coloring.colors.data(), 32);
  setRendererColoringBoundaries(renderer_, 0.3, 0.4);
  expect_no_error();
  {
    GlSpy spy;
    spy.fail_next("glGetProgramBinary");
    spy.fail_next("glProgramBinary");  // the cache holds all programs by now
    initializeVolumeRenderer(renderer_);
    expect_error_of("BinaryShader::load_to_program");
    EXPECT_EQ(spy.live_objects(), 0U);
  }
  frame();
  EXPECT_EQ(pending_error(), "Program has not been compiled yet.");
  initializeVolumeRenderer(renderer_);
  scene_.coloring = {{0xFF000000U, 0xFFFFFFFFU}, 0.0, 1.0};
  expect_scene();
}

}  // namespace
}  // namespace oct::test
