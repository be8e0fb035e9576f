// The exports of the display: handles, misuse, the functions that are meant to do nothing, what errors say.
#include <algorithm>
#include <functional>
#include <limits>
#include <thread>

#include "support/gl_spy.h"
#include "support/reference/display_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

TEST(DisplayApiTest, EveryFunctionRefusesNull) {
  expect_null_refused("Invalid DisplayRenderingHandle specified. ", initDisplayRendering,
                      uninitDisplayRendering, renderDisplay, setDisplayData, setDisplayBounds,
                      clearDisplayData, setGammaCorrection, setDisplayBlur, setDisplayFlip, setDisplayPart,
                      setDisplayDynamicReduction, setDisplayPepperFilter, setDisplayMedianFilter,
                      setBackgroundColor, setDisplayColormap, setDisplayColoringBoundaries,
                      setDisplayNumberOverlays, setDisplayOverlayData, setDisplayOverlayColormap,
                      setDisplayOveralyColoringBoundaries, setDisplayOveralyThreshold, explainDisplay);
  clearDisplayRendering(nullptr);
  EXPECT_EQ(pending_error(), "(none)");
}

class DisplayApiGLTest : public testing::Test {
 protected:
  DisplayApiGLTest() {
    scene_.image = test_image(40, 50);
    scene_.width = 50;
    scene_.height = 40;
    scene_.overlay_image = test_image(40, 50, 4);
    scene_.overlays = {{{0x80FF0000U, 0x8000FF00U}, 0.0, 1.0}};
  }
  void TearDown() override { EXPECT_EQ(pending_error(), "(none)"); }
  Picture frame() const { return stage_.frame(50, 40); }
  void expect_scene(const Picture& picture) const { EXPECT_TRUE(agree(picture, reference_picture(scene_))); }

  Scene scene_;
  const DisplayStage stage_;
  const DisplayRenderingHandle renderer_ = stage_.renderer;
};

// What is explained has one colour, or no opacity, and what is not shows something. Another thread asks.
TEST_F(DisplayApiGLTest, AnEmptyPictureIsExplained) {
  const auto explanation = [&](DisplayRenderingHandle renderer) {
    std::string text(1000, '?');
    int result = -1;
    std::thread([&] {
      result = explainDisplay(renderer, text.data(), static_cast<int>(text.size()));
    }).join();
    EXPECT_EQ(result, text[0] != '\0' ? 1 : 0);
    return text.substr(0, text.find('\0'));
  };
  EXPECT_EQ(explanation(renderer_), "No frame has been drawn yet. ");
  const float nan = std::numeric_limits<float>::quiet_NaN();
  struct Cause {
    const char* words;
    std::function<void(Scene&)> make;
  };
  const auto even = [](Scene& s, float value) { std::ranges::fill(s.image.samples, value); };
  const Cause causes[] = {
      {"There is no image. Set one", [](Scene& s) { s.image = {}; }},
      {"fourth byte of each of its 2 colours is 0",
       [](Scene& s) {
         s.colormap = {0x00FF00U, 0xFFU};
       }},
      {"has one colour only",
       [](Scene& s) {
         s.colormap = {0xFF00FF00U, 0xFF00FF00U};
       }},
      {"holds no numbers, only NaN", [&](Scene& s) { even(s, nan); }},
      {"All samples of the image are 0.25", [&](Scene& s) { even(s, 0.25F); }},
      {"below the lower colouring boundary", [](Scene& s) { s.lower = 7.0, s.upper = 9.0; }},
      {"above the upper colouring boundary", [](Scene& s) { s.lower = -9.0, s.upper = -7.0; }},
      {"above the lower colouring boundary", [](Scene& s) { s.lower = -7.0, s.upper = -9.0; }},
      {"below the upper colouring boundary", [](Scene& s) { s.lower = 9.0, s.upper = 7.0; }},
      {"below the lower colouring boundary", [](Scene& s) { s.lower = s.upper = 9.0; }},
      {"above the upper colouring boundary", [](Scene& s) { s.lower = s.upper = -9.0; }},
      {"below 2.5, and the picture has the first colour", [](Scene& s) { s.lower = 0.0, s.upper = 10.0; }},
      {"above -2.5, and the picture has the last colour", [](Scene& s) { s.lower = -10.0, s.upper = 0.0; }},
      {"", [](Scene& s) { s.lower = 0.5, s.upper = 2.0; }},
      {"", [](Scene& s) { s.lower = s.upper = 0.5; }},
      {"", [](Scene& s) { s.image.samples[7] = std::numeric_limits<float>::infinity(); }},
      {"", [](Scene& s) { s.lower = 7.0, s.upper = 9.0, s.overlays = {Overlay{}}; }}};
  scene_.overlays.clear();
  for (const Cause& cause : causes) {
    Scene scene = scene_;
    cause.make(scene);
    scene.threshold = -1e9;
    apply(scene, renderer_);
    const Picture picture = frame();
    EXPECT_EQ(pending_error(),
              scene.image.samples.empty() ? "Cannot generate a texture of the required size. " : "(none)");
    const std::string text = explanation(renderer_);
    EXPECT_TRUE(contains(text, cause.words)) << text;
    EXPECT_EQ(text.empty(), *cause.words == '\0') << text;
    int colours = 0;  // other than the first pixel's
    picture.for_each([&](int x, int y) {
      colours += !std::equal(picture.pixel(x, y), picture.pixel(x, y) + 3, picture.pixel(0, 0));
    });
    EXPECT_EQ(colours > 0, text.empty() || contains(text, "fourth byte")) << &cause - causes;
    setDisplayColoringBoundaries(renderer_, 0.0, 1.0);
    EXPECT_EQ(explanation(renderer_), text) << "counts from the next frame on";
  }
  beginOffscreenFrame(stage_.target, 8, 8);
  setViewportSize(3, 0);
  renderDisplay(renderer_);
  EXPECT_TRUE(contains(explanation(renderer_), "has no area: 3 x 0 pixels"));
  uninitDisplayRendering(renderer_);
  renderDisplay(renderer_);
  EXPECT_TRUE(contains(explanation(renderer_), "drawn before initDisplayRendering()"));
  finishOffscreenFrame(stage_.target, nullptr);
}

TEST_F(DisplayApiGLTest, WhatIsRefusedOrIgnoredLeavesThePicture) {
  apply(scene_, renderer_);
  const float sample = 0.0F;
  const std::uint32_t color = 0;
  constexpr int large = std::numeric_limits<int>::max();
  expect_refused({
      {"Image sizes must not be negative. ", [&] { setDisplayData(renderer_, -1, 1, &sample); }},
      {"Image sizes must not be negative. ", [&] { setDisplayData(renderer_, 1, -1, &sample); }},
      {"Image data must not be null. ", [&] { setDisplayData(renderer_, 4, 4, nullptr); }},
      {"The image is too large. ", [&] { setDisplayData(renderer_, large, large, &sample); }},
      {"Image sizes must not be negative. ", [&] { setDisplayOverlayData(renderer_, 2, -3, &sample); }},
      {"Image data must not be null. ", [&] { setDisplayOverlayData(renderer_, 2, 3, nullptr); }},
      {"The number of colours must not be negative. ", [&] { setDisplayColormap(renderer_, &color, -1); }},
      {"Colour map data must not be null. ", [&] { setDisplayColormap(renderer_, nullptr, 2); }},
      {"The overlay index must be from 0 to 7. ",
       [&] { setDisplayOverlayColormap(renderer_, 8, &color, 1); }},
      {"The overlay index must be from 0 to 7. ",
       [&] { setDisplayOverlayColormap(renderer_, -1, &color, 1); }},
      {"Colour map data must not be null. ", [&] { setDisplayOverlayColormap(renderer_, 0, nullptr, 1); }},
      {"The overlay index must be from 0 to 7. ",
       [&] { setDisplayOveralyColoringBoundaries(renderer_, 8, 0, 1); }},
      {"Invalid enum value specified for MedianFilter. ", [&] { setDisplayMedianFilter(renderer_, 3); }},
      {"Invalid enum value specified for MedianFilter. ", [&] { setDisplayMedianFilter(renderer_, -1); }},
      {"(none)", [&] { setDisplayMedianFilter(renderer_, 0); }},
      {"(none)", [&] { setDisplayMedianFilter(renderer_, 2); }},
      {"(none)", [&] { setGammaCorrection(renderer_, 5.0F); }},
      {"(none)", [&] { setDisplayDynamicReduction(renderer_, 0); }},
      {"(none)", [&] { setDisplayBounds(renderer_, 100, -100); }},
      {"(none)", [&] { clearDisplayData(renderer_); }},
      {"(none)", [&] { setDisplayNumberOverlays(renderer_, 0, 1000); }},
      {"(none)", [&] { setDisplayNumberOverlays(renderer_, 0, -1); }},
      {"(none)", [&] { setDisplayNumberOverlays(renderer_, 1000, 1); }},
  });
  expect_scene(frame());
}

TEST_F(DisplayApiGLTest, AFrameThatCannotBeDrawnIsReportedAndTheNextIsGood) {
  GLint limit = 0;
  glGetIntegerv(GL_MAX_TEXTURE_SIZE, &limit);
  const std::vector<float> samples(static_cast<std::size_t>(limit) + 1);
  const std::vector<std::uint32_t> colors(samples.size());
  const std::string size = "Cannot generate a texture of the required size. ";
  const std::pair<std::function<void()>, std::string> calls[] = {
      {[] {}, size},
      {[&] { setDisplayData(renderer_, 0, 5, nullptr); }, size},
      {[&] { setDisplayOverlayData(renderer_, 0, 0, nullptr); }, size},
      {[&] { setDisplayData(renderer_, 1, limit + 1, samples.data()); }, size},
      {[&] { setDisplayColormap(renderer_, colors.data(), limit + 1); },
       "An OpenGL error in render: colormap changed occured: A numeric argument is out of range. The "
       "offending command is ignored and has no other side effect than to set the error flag. "
       "(GL_INVALID_VALUE)\n"},
  };
  for (std::size_t i = 0; i < std::size(calls); ++i) {
    const auto& [change, message] = calls[i];
    change();
    testing::internal::CaptureStderr();
    frame();
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              (i == 3 ? "Warning max texture size is likely exceeded. \n" : "") +
                  ("An error occured: " + message) + "\n");
    EXPECT_EQ(pending_error(), message);
    expect_scene(stage_.draw(scene_));
  }
}

TEST_F(DisplayApiGLTest, BeforeInitNothingIsDrawnAndAfterItWhatChangedIsUploaded) {
  uninitDisplayRendering(renderer_);
  apply(scene_, renderer_);
  EXPECT_EQ(log_of([&] { frame(); }), "Renderer has not yet been initialized. Aborting rendering\n");
  GlSpy spy;
  // Gamma is set and not used, so compilers drop it; every other uniform is there.
  EXPECT_EQ(log_of([&] { initDisplayRendering(renderer_); }), "Uniform gamma was not found. \n");
  EXPECT_EQ(spy.calls("glLinkProgram"), 0) << "programs are kept";
  expect_scene(frame());
}

// Each change, then three frames: the first does what the change asks for and no more, the second keeps its picture,
// the third shows that.
TEST_F(DisplayApiGLTest, WhatHasNotChangedIsNotDoneAgain) {
  scene_.pepper = true;
  apply(scene_, renderer_);
  const auto give_image = [&] {
    setDisplayData(renderer_, scene_.image.depth, scene_.image.a_scans, scene_.image.samples.data());
  };
  const struct {
    const char* name;
    std::function<void()> change;
    int uploads = 0;    // of images
    int textures = 0;   // specified anew
    int maps = 0;       // of colours
    int filters = 0;    // passes
    bool drawn = true;  // the image and the overlay
  } steps[] = {
      {"first", [] {}, 2, 4, 9, 1},
      {"nothing", [] {}, 0, 0, 0, 0, false},
      {"the same image again", give_image, 1, 0, 0, 1},
      {"as many samples",
       [&] {
         std::swap(scene_.image.depth, scene_.image.a_scans);
         give_image();
       },
       1, 3, 0, 1},
      {"overlay",
       [&] {
         scene_.overlay_image = test_image(40, 50, 9);
         setDisplayOverlayData(renderer_, 40, 50, scene_.overlay_image.samples.data());
       },
       1},
      {"boundaries",
       [&] { setDisplayColoringBoundaries(renderer_, scene_.lower = 0.1, scene_.upper = 0.8); }},
      {"threshold", [&] { setDisplayOveralyThreshold(renderer_, scene_.threshold = 0.4); }},
      {"flip", [&] { setDisplayFlip(renderer_, scene_.flip = true); }},
      {"colours",
       [&] {
         scene_.overlays[0].colormap = {0x40FFFFFFU, 0xA00000FFU};
         setDisplayOverlayColormap(renderer_, 0, scene_.overlays[0].colormap.data(), 2);
       },
       0, 0, 1},
      {"blur", [&] { setDisplayBlur(renderer_, scene_.first_blur = true, 0); }, 0, 0, 0, 3},
      {"viewport", [&] { scene_.width = 30; }},
      {"no filter",
       [&] {
         setDisplayBlur(renderer_, scene_.first_blur = false, 0);
         setDisplayPepperFilter(renderer_, scene_.pepper = false);
       },
       1, 1},
      {"a frame that failed",
       [&] {
         GlSpy failing;
         failing.fail_next("glClear");
         frame();
         EXPECT_NE(pending_error(), "(none)");
       },
       2, 2, 9},
      {"context",
       [&] {
         uninitDisplayRendering(renderer_);
         initDisplayRendering(renderer_);
       },
       2, 2, 9},
  };
  for (const auto& [name, change, uploads, textures, maps, filters, drawn] : steps) {
    SCOPED_TRACE(name);
    change();
    const GlSpy spy;
    for (const int done : {drawn ? 1 : 0, drawn ? 2 : 0, drawn ? 2 : 0}) {
      EXPECT_TRUE(agree(stage_.frame(scene_.width, 40), reference_picture(scene_)));
      EXPECT_EQ(spy.calls("glTexSubImage2D"), uploads);
      EXPECT_EQ(spy.calls("R32F texture") + spy.calls("RGBA32F texture"), textures);
      EXPECT_EQ(spy.calls("glTexImage1D"), maps);
      EXPECT_EQ(spy.calls("glDrawArrays"), filters + 2 * done);
    }
    EXPECT_TRUE(textures > 0 || spy.calls("glGetTexLevelParameteriv") == 0);
  }
}

// Of four frames, the first of another image: one is drawn, one keeps its picture, two copy it. Whichever call fails, the
// error is told, and the frames that tell none are right.
TEST_F(DisplayApiGLTest, AFailedCallSpoilsNoLaterFrame) {
  scene_.pepper = true;
  apply(scene_, renderer_);
  const Picture expected = reference_picture(scene_);
  for (const char* const function : {"glBindFramebuffer", "glBindTexture", "glBlitFramebuffer", "glClear",
                                     "glDrawArrays", "glUseProgram", "glTexSubImage2D", "glViewport"}) {
    bool failed = true;
    for (int call = 0; failed; ++call) {
      SCOPED_TRACE(function + (" " + std::to_string(call)));
      setDisplayData(renderer_, 40, 50, scene_.image.samples.data());
      GlSpy spy;
      spy.fail_next(function, 1, GL_OUT_OF_MEMORY, call);
      int errors = 0;
      for (int i = 0; i < 4; ++i) {
        const Picture picture = frame();
        const bool told = pending_error() != "(none)";
        errors += told;
        clear_gl_errors();
        EXPECT_TRUE(told || agree(picture, expected));
      }
      failed = spy.calls(function) > call;
      EXPECT_LE(errors, failed ? 1 : 0);
    }
  }
}

// What becomes of such frames is tested with every call; here it is what the errors say, without OpenGL's own words.
TEST_F(DisplayApiGLTest, AFailedOpenGLCallTellsItsPlace) {
  scene_.first_blur = scene_.pepper = true;
  apply(scene_, renderer_);
  const struct {
    const char* function;
    std::string error;
    bool compiles = false;  // as with a driver that holds no executable for a binary
  } faults[] = {
      {"glCompileShader", "Vertex shader compilation failed", true},
      {"glCreateShader", "Vertex shader compilation failed", true},
      {"glLinkProgram", "", true},
      {"glCreateProgram", "An OpenGL error in BinaryShader::load_to_program"},
      {"glProgramBinary", "An OpenGL error in BinaryShader::load_to_program"},
      {"glGenBuffers", "Could not create OpenGL buffer. "},
      {"glBufferData", "An OpenGL error in DisplayRenderer::init"},
      {"glTexImage1D", "An OpenGL error in render: colormap changed"},
      {"glTexImage2D", "An OpenGL error in SimpleDataProvider::resize"},
      {"glTexSubImage2D", "An OpenGL error in SimpleDataProvider::LockedTexture::glTexSubImage2D"},
      {"glFramebufferTexture2D", "An OpenGL error in AbstractOpenGLFilter::resize"},
      {"glGenTextures", "Invalid texture for rendering...."},
      {"glGenFramebuffers", "Invalid texture for rendering...."},
      {"left by the client", "An OpenGL error in render: init"},
  };
  for (const auto& [function, error, compiles] : faults) {
    uninitDisplayRendering(renderer_);
    beginOffscreenFrame(stage_.target, 50, 40);
    GlSpy spy;
    if (compiles) spy.answer(GL_PROGRAM_BINARY_LENGTH, 0);
    spy.fail_next(function);
    initDisplayRendering(renderer_);
    if (std::string(function) == "left by the client") spy.queue_error(GL_INVALID_ENUM);
    renderDisplay(renderer_);
    const std::string found = pending_error();
    EXPECT_EQ(found.substr(0, found.find(" occured: ")), error) << function;
    clear_gl_errors();
    finishOffscreenFrame(stage_.target, nullptr);
  }
}

TEST_F(DisplayApiGLTest, HalfPrecisionWhenFloatDoesNotFit) {
  GlSpy spy;
  spy.fail_next("R32F proxy");
  scene_.overlays.clear();
  // Half floats keep 11 bits of the sample, less than a level around the boundaries 0 and 1.
  expect_scene(stage_.draw(scene_));
  EXPECT_EQ(spy.calls("R16F texture"), 1);
}

}  // namespace
}  // namespace oct::test
