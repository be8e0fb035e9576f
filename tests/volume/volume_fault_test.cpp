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

// What becomes of such frames is tested with every call; here it is what the errors say.
TEST_F(VolumeFaultTest, AFrameThatFailsTellsThePlace) {
  scene_.scale_marks = scene_.edges = scene_.box = scene_.clip = true;
  scene_.clip_value = 0.6F;
  stage_.draw(scene_);
  const struct {
    const char* function;
    std::string error;
    int after = 0;
  } faults[] = {
      {"glTexImage1D", "An OpenGL error in render: colormap changed occured: "},
      {"glTexImage2D", "An OpenGL error in FontRenderer::rasterise occured: ", 1},
      {"glGenTextures", "Invalid texture for rendering...."},
      {"glGenBuffers", "Could not create OpenGL buffer. "},
      {"glGenVertexArrays", "Could not create OpenGL buffer. "},
      {"glBufferData", "An OpenGL error in VolumeRenderer::background changed occured: "},
      {"glCheckFramebufferStatus",
       "An OpenGL error occured. Framebuffer is not complete: GL_FRAMEBUFFER_UNSUPPORTED"},
  };
  for (const auto& [function, error, after] : faults) {
    beginOffscreenFrame(stage_.target, 80, 60);
    stage_.restart();  // everything is made and uploaded anew
    stage_.prepare(scene_);
    GlSpy spy;
    spy.fail_next(function, 1, GL_FRAMEBUFFER_UNSUPPORTED, after);
    renderOfflineVolume(offline_, 0);
    const std::string found = pending_error();
    EXPECT_TRUE(found.starts_with(error)) << function << ": " << found;
    clear_gl_errors();
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
  scene_.coloring = {};
  expect_scene();
}

}  // namespace
}  // namespace oct::test
