// The volume renderer as its exports give it: handles, checks, what it remembers, what a frame consists of, and what
// is told of what fails.
#include <cmath>

#include "support/fault_scenario.h"
#include "support/gl_spy.h"
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
  expect_null_refused("The specified VolumeRendererHandle is invalid. ", deleteVolumeRenderer,
                      initializeVolumeRenderer, uninitializeVolumeRenderer, clearVolumeRenderer, setAngles,
                      setTranslation, setRange, setZoom, setRenderingSlices, setUsePerspective,
                      setLateralVoxelsPerPixel, setRenderingMode, setVolumeMode, setVolumeLighting,
                      setRayJitter, setOpacityLength, setSectionalView, setClipPlane, fixClipPlane, setBorder,
                      setRemoveSegment, setRenderElements, setRenderBackground, setRenderForeground,
                      setRendererPart, setRendererColormap, setRendererSecondaryColormap,
                      setOverlayRendererColormap, setSurfaceColormap, setRendererColoringBoundaries,
                      setRendererSecondaryColoringBoundaries, setOverlayRendererColoringBoundaries,
                      setRendererSecondarySliceIndex, explainFrame, pickVolume, setSurface, setSurfaceDepths);
  setVolumeMode(renderer_, 2);
  setRenderingMode(renderer_, 1);
  setSectionalView(renderer_, 1, 1.0F, 1, 0.0F, 1, 0.5F);
  setAngles(renderer_, 190.0, -190.0);
  setRenderForeground(renderer_, 0x33669900U);
  expect_no_error();
  const std::string mode = "Invalid rendering mode selected.";
  const std::string position =
      "Slice positions of sectional view are out of range. Values must be in range from 0.0 to 1.0. ";
  const std::string factor = "The factors of the lighting must be numbers from 0 to 1000000. ";
  const std::string length = "The opacity length must be a finite number of millimetres, 0 or more. ";
  const std::string part = "A picture in parts must have 1 to 1048576 pixels a side. ";
  const float value = 1.0F;
  const auto h = renderer_;
  setVolumeLighting(h, 1e6, 0.0, 0.5), setOpacityLength(h, 0.25), setRayJitter(h, -1);
  expect_no_error();
  expect_refused({
      {factor, [h] { setVolumeLighting(h, -0.1, 0.0, 0.0); }},
      {factor, [h] { setVolumeLighting(h, 0.0, std::nan(""), 0.0); }},
      {factor, [h] { setVolumeLighting(h, 0.0, 0.0, 1.1e6); }},
      {length, [h] { setOpacityLength(h, -0.1); }},
      {length, [h] { setOpacityLength(h, std::nan("")); }},
      {length, [h] { setOpacityLength(h, HUGE_VAL); }},
      {mode, [h] { setVolumeMode(h, -1); }},
      {part, [h] { setRendererPart(h, 0, 1, 0, 0); }},
      {part, [h] { setRendererPart(h, 1048577, 1, 0, 0); }},
      {part, [h] { setRendererPart(h, 1, 1, 0, -1048577); }},
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
  EXPECT_EQ(settings.lighting, (Lighting{1e6F, 0.0F, 0.5F}));
  EXPECT_EQ(settings.opacity_length, 0.25);
  EXPECT_TRUE(settings.ray_jitter);
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
  scene_.surface = {2, 2, 1.0, std::vector<float>(4, 0.5F)};
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
  // Opaque things first; then, from behind, what is blended.
  EXPECT_EQ(
      marks_of_frame(),
      (Names{"OfflineRendering::render", "VolumeRenderer::render", "render: init", "render: colormap changed",
             "VolumeRenderer::render_background", "VolumeRenderer::render_surface",
             "VolumeRenderer::render_elements", "VolumeRenderer::render_frame",
             "VolumeRenderer::render_clip_plane_border", "render_raycasting::drawing",
             "positions of the surface", "VolumeRenderer::render_clip_plane_border",
             "VolumeRenderer::render_clip_plane_border::draw_overlay", "VolumeRenderer::render_elements",
             "VolumeRenderer::render_frame", "frame end"}));
  setRenderingMode(renderer_, 1);
  renderOfflineVolume(offline_, 0);  // builds what slices need
  EXPECT_EQ(marks_of_frame(),
            (Names{"OfflineRendering::render", "VolumeRenderer::render", "render: init",
                   "VolumeRenderer::render_background", "VolumeRenderer::render_surface",
                   "VolumeRenderer::render_sectional_view", "VolumeRenderer::render_elements",
                   "VolumeRenderer::render_frame", "VolumeRenderer::render_sectional_view",
                   "VolumeRenderer::render_elements", "VolumeRenderer::render_frame", "copy the kept picture",
                   "frame end"}));
  setViewportSize(13, 7);
  std::array<GLint, 4> viewport{};
  glGetIntegerv(GL_VIEWPORT, viewport.data());
  EXPECT_EQ(viewport, (std::array<GLint, 4>{0, 0, 13, 7}));
  finishOffscreenFrame(stage_.target, nullptr);
  expect_no_error();
}

class VolumeFaultTest : public VolumeTest {
 protected:
  void expect_scene(int content = 0) {
    EXPECT_TRUE(shows(scene_, content));
    expect_no_error();
  }
  static void expect_error_of(const std::string& place) {
    EXPECT_TRUE(pending_error().starts_with("An OpenGL error in " + place + " occured: ")) << place;
  }
};

// What becomes of such frames is tested with every call; here it is what the errors say.
TEST_F(VolumeFaultTest, AFrameThatFailsTellsThePlace) {
  scene_.scale_marks = scene_.edges = scene_.box = scene_.clip = true;
  scene_.clip_value = 0.6F;
  scene_.surface = {4, 4, 1.0, std::vector<float>(16, 0.5F)};
  stage_.draw(scene_);
  const struct {
    const char* function;
    std::string error;
    int after = 0;
  } faults[] = {
      {"glTexImage1D", "An OpenGL error in render: colormap changed occured: "},
      {"glTexImage2D", "An OpenGL error in FontRenderer::rasterise occured: ", 4},
      {"glGenTextures", "Invalid texture for rendering...."},
      {"glGenBuffers", "Could not create OpenGL buffer. "},
      {"glGenVertexArrays", "Could not create OpenGL buffer. "},
      {"glBufferData", "An OpenGL error in VolumeRenderer::background changed occured: ", 1},
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

// What is around them is failed elsewhere.
TEST_F(VolumeFaultTest, EveryCallOfASurfaceAmongSlicesAndRays) {
  scene_.surface = {2, 2, 1.0, {0.4F, 0.5F, 0.6F, 0.5F}};
  uninitializeVolumeRenderer(renderer_);
  for (const bool sectional : {true, false}) {
    scene_.sectional = sectional;
    fail_every_call({[&] {
                       initializeVolumeRenderer(renderer_);
                       stage_.prepare(scene_);
                     },
                     [&] { return stage_.frame(); },
                     [&] {
                       beginOffscreenFrame(stage_.target, 1, 1);
                       uninitializeVolumeRenderer(renderer_);
                       allocateOfflineVolume(offline_, 0, 0, 0);
                       finishOffscreenFrame(stage_.target, nullptr);
                     },
                     pending_error});
  }
}

TEST_F(VolumeFaultTest, AFailedAllocationKeepsThePictureAndRefusesUploads) {
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
  const std::vector<float> larger(20 * 20 * 20, 1.0F);
  for (const auto upload : {uploadOfflineVolume, uploadOfflineVolumeOverlay, uploadOverlayOfflineVolume}) {
    upload(offline_, larger.data());
    EXPECT_EQ(pending_error(), "Allocate a volume before uploading one. ");
  }
  uploadOfflineSubVolume(offline_, 0, 1, larger.data());
  EXPECT_EQ(pending_error(), "Allocate a volume before uploading one. ");
  uploadOfflineVolumeSlice(offline_, 0, larger.data());
  EXPECT_EQ(pending_error(), "Allocate a volume before uploading one. ");
  expect_scene();
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

// The others are none of the start's business.
TEST_F(VolumeFaultTest, AProgramIsBuiltWhenAFrameFirstNeedsIt) {
  scene_.surface = {2, 2, 1.0, {0.4F, 0.5F, 0.6F, 0.5F}};
  stage_.prepare(scene_);
  setRenderElements(renderer_, 1, 0);
  beginOffscreenFrame(stage_.target, 80, 60);
  uninitializeVolumeRenderer(renderer_);
  GlSpy spy;
  int programs = 3;
  initializeVolumeRenderer(renderer_);
  EXPECT_EQ(spy.calls("glCreateProgram"), programs) << "background, lines and rays of the mode";
  const struct {
    std::function<void()> change;
    int programs;
  } rows[] = {
      {[] {}, 0},
      {[&] { setVolumeMode(renderer_, 0); }, 1},
      {[&] { setVolumeMode(renderer_, 3); }, 0},  // without secondary data there are no rays
      {[&] { setRenderingMode(renderer_, 1); }, 1},
      {[&] { setRenderElements(renderer_, 1, 1); }, 1},                           // the surface
      {[&] { setRenderingMode(renderer_, 0), setVolumeMode(renderer_, 1); }, 1},  // rays that end on it
      {[&] { setVolumeMode(renderer_, 0); }, 0},
      {[&] { setVolumeLighting(renderer_, 0.5, 0.5, 0.0); }, 1},
      {[&] { setRayJitter(renderer_, 1), setOpacityLength(renderer_, 0.1); }, 1},
      {[&] { setVolumeMode(renderer_, 1), setRayJitter(renderer_, 0); }, 0},  // no light and no opacity there
      {[&] { setVolumeMode(renderer_, 0), setVolumeLighting(renderer_, 1.0, 0.0, 0.0); }, 1},
      {[&] { setOpacityLength(renderer_, 0.0); }, 0},  // where all is off, the program that was built first
  };
  for (const auto& [change, built] : rows) {
    change();
    programs += built;
    for (int i = 0; i < 2; ++i) renderOfflineVolume(offline_, 0);
    EXPECT_EQ(spy.calls("glCreateProgram"), programs) << &built - &rows[0].programs;
  }
  const std::size_t objects = spy.live_objects();
  setVolumeMode(renderer_, 2);
  expect_no_error();
  for (int i = 0; i < 2; ++i) {
    spy.fail_next("glProgramBinary");
    spy.fail_next("glGetProgramBinary");  // where the cache does not hold it yet
    renderOfflineVolume(offline_, 0);
    EXPECT_TRUE(pending_error().starts_with("An OpenGL error in BinaryShader"));
    EXPECT_EQ(spy.live_objects(), objects) << "and the next frame tries again";
  }
  finishOffscreenFrame(stage_.target, nullptr);
  scene_.mode = 2;
  EXPECT_TRUE(agree(stage_.draw(scene_), reference_picture(scene_), {1, 0.99, 255}));
  expect_no_error();
}

}  // namespace
}  // namespace oct::test
