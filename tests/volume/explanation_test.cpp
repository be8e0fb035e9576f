// Why a frame shows nothing: every cause by its words, and none for a frame that shows something.
#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <thread>

#include "random_scene.h"
#include "volume_test.h"

namespace oct::test {
namespace {

std::string explanation_of(VolumeRendererHandle renderer) {
  std::string text(4000, '?');
  const int result = explainFrame(renderer, text.data(), static_cast<int>(text.size()));
  text.resize(text.find('\0'));
  EXPECT_EQ(result, text.empty() ? 0 : 1) << text;
  return text;
}

std::string on_another_thread(VolumeRendererHandle renderer) {
  std::string text;
  std::thread([&] { text = explanation_of(renderer); }).join();
  return text;
}

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

struct Cause {
  const char* name;
  std::function<void(VolumeScene&, const VolumeStage&)> make;  // the stage has the scene already
  std::string words;
  bool from_settings = true;  // known on every thread; else only where the picture can be looked at
};

TEST_F(VolumeTest, EveryCauseHasItsWords) {
  EXPECT_EQ(explanation_of(renderer_), "No frame has been drawn yet. ");
  frame();
  EXPECT_TRUE(contains(explanation_of(renderer_), "Allocate one (allocateOfflineVolume)"));
  allocateOfflineVolume(offline_, 100000, 2, 2);
  pending_error();
  frame();
  EXPECT_TRUE(
      contains(explanation_of(renderer_), "the last allocation failed: A volume of 100000 x 2 x 2 voxels"));
  allocateOfflineVolume(offline_, 14, 12, 10);
  frame();
  EXPECT_TRUE(
      contains(explanation_of(renderer_), "nothing has been uploaded. Upload it (uploadOfflineVolume)"));

  const auto of_renderer = [](auto function, auto... values) {
    return [=](VolumeScene&, const VolumeStage& stage) { function(stage.renderer, values...); };
  };
  const auto with = [](auto change) {
    return [=](VolumeScene& scene, const VolumeStage& stage) {
      change(scene);
      VolumeStage& own = const_cast<VolumeStage&>(stage);
      own.prepare(scene);
    };
  };
  const auto boundaries = [](VolumeScene& s, double lower, double upper) {
    s.coloring = {ramp_colors(64, 1.0), lower, upper}, s.mode = 0;
  };
  const Cause causes[] = {
      {"off", of_renderer(setRenderElements, 0, 0), "The volume is switched off, and so is the surface."},
      {"empty surface",
       [](auto&, const VolumeStage& stage) {
         const float heights[2] = {0.5F, 0.5F};
         setSurface(stage.renderer, 2, 1, 1.0, heights);
         setRenderElements(stage.renderer, 0, 1);
       },
       "the surface, which is switched on, has no triangles"},
      {"slice 0",
       [](VolumeScene& s, const VolumeStage& stage) {
         uploadOfflineVolumeSlice(stage.offline, 0, s.volume.voxels.data());
       },
       "Of the volume's 10 B-scans 0 count as uploaded"},
      {"left", of_renderer(setTranslation, -5.0, 0.0, 0.0),
       "outside of the view, to the left: its translation is -5, 0, 0"},
      {"above", of_renderer(setTranslation, 0.0, 6.0, 0.0), "outside of the view, above"},
      {"behind", of_renderer(setTranslation, 0.0, 0.0, 9.0), "behind the viewer"},
      {"clip plane", of_renderer(setClipPlane, 1, 0, -0.1F), "cuts everything away: its value is -0.1"},
      {"open cut",
       [](VolumeScene&, const VolumeStage& stage) {
         setAngles(stage.renderer, 0.0, 0.0);
         setClipPlane(stage.renderer, 1, 1, 0.5F);
       },
       "its cut is open: its value is 0.5"},
      {"no sections",
       [](VolumeScene&, const VolumeStage& stage) {
         setRenderingMode(stage.renderer, 1);
         setSectionalView(stage.renderer, 0, 0.5F, 0, 0.5F, 0, 0.5F);
       },
       "All three slices of the sectional view are switched off."},
      {"section that has not come", with([](VolumeScene& s) {
         s.sectional = true, s.slices_uploaded = 3;
         s.sections = {Slice{false, 0.5F}, Slice{false, 0.5F}, Slice{true, 0.9F}};
       }),
       "has not been uploaded yet"},
      {"sections of one colour",
       with([](VolumeScene& s) { s.sectional = true, s.coloring.lower = 5.0, s.coloring.upper = 6.0; }),
       "Every slice has the first colour of the map"},
      {"no secondary data", with([](VolumeScene& s) { s.mode = 3; }),
       "and there is none. Upload it (uploadOfflineSecondaryData)"},
      {"no such secondary image",
       with([](VolumeScene& s) { s.mode = 3, s.secondary = test_volume(2, 12, 10), s.secondary_index = 2; }),
       "uses image 2 of the secondary data, which has images 0 to 1"},
      {"no opacity", with([](VolumeScene& s) { s.coloring.colors = ramp_colors(7, 0.0); }),
       "each of its 7 colours is 0"},
      {"below the boundaries", with([&](VolumeScene& s) { boundaries(s, 5.0, 6.0); }),
       "at or below the lower colouring boundary: values up to 1.02"},
      {"the same of a part", with([&](VolumeScene& s) {
         boundaries(s, 1.0, 2.0), s.slices_uploaded = 1;
         std::ranges::fill(s.volume.voxels, 0.5F), s.volume.voxels.back() = 7.0F;
       }),
       "values up to 0.5, boundaries 1 to 2. Lower the boundaries (setRendererColoringBoundaries)."},
      {"below the opacity", with([&](VolumeScene& s) {
         boundaries(s, 0.0, 10.0);
         for (std::size_t i = 0; i < 32; ++i) s.coloring.colors[i] &= 0xFFFFFFU;
       }),
       "where the colour map is transparent: values up to 1.02"},
      {"wrong way round", with([&](VolumeScene& s) { boundaries(s, 1.0, 0.0); }),
       "boundaries are the wrong way round"},
      {"maximum below the boundaries",
       with([](VolumeScene& s) { s.coloring.lower = 3.0, s.coloring.upper = 4.0; }),
       "Every ray has the first colour of the map"},
      {"no numbers", with([](VolumeScene& s) { std::ranges::fill(s.volume.voxels, nan); }),
       "holds no number"},
      {"nearly transparent", with([&](VolumeScene& s) { boundaries(s, 0.0, 2.0), s.opacity_length = 1e7; }),
       "at an opacity length of 1e+07 millimetres it is too transparent (values up to 1.02", false},
      {"colour of the background", with([](VolumeScene& s) {
         s.background_bottom = s.background_top = 0x000000FFU;
         s.coloring.colors = {0xFF000000U, 0xFF000000U};
       }),
       "it has the colours of the background", false},
      {"too small", of_renderer(setZoom, 174.97), "it covers less than a pixel", false},
      {"surface out of view",
       [](VolumeScene&, const VolumeStage& stage) {
         const std::vector<float> heights(4, 70.0F);
         setSurface(stage.renderer, 2, 2, 1.0, heights.data());
         setRenderElements(stage.renderer, 0, 1);
       },
       "The surface that is shown lies outside of the view", false},
  };
  for (const Cause& cause : causes) {
    SCOPED_TRACE(cause.name);
    VolumeStage stage;
    VolumeScene scene = scene_;
    stage.draw(scene);
    EXPECT_EQ(explanation_of(stage.renderer), "");
    cause.make(scene, stage);
    EXPECT_EQ(explanation_of(stage.renderer), "") << "of the frame before";
    stage.frame();
    const std::string text = explanation_of(stage.renderer);
    EXPECT_TRUE(contains(text, cause.words)) << text;
    EXPECT_EQ(on_another_thread(stage.renderer), cause.from_settings ? text : "");
  }
  scene_.content = 1;
  stage_.draw(scene_);
  EXPECT_TRUE(contains(explanation_of(renderer_), "Content type 1 shows the overlay volume alone"));
  beginOffscreenFrame(stage_.target, 8, 8);
  setViewportSize(0, 5);
  renderOfflineVolume(offline_, 0);
  EXPECT_TRUE(contains(explanation_of(renderer_), "has no area: 0 x 5 pixels"));
  setViewportSize(8, 8);
  uninitializeVolumeRenderer(renderer_);
  renderOfflineVolume(offline_, 0);
  EXPECT_EQ(explanation_of(renderer_), "The last frame failed: " + pending_error());
  finishOffscreenFrame(stage_.target, nullptr);
  char cut[8];
  EXPECT_EQ(explainFrame(renderer_, cut, sizeof cut), 1);
  EXPECT_STREQ(cut, "The las");
  EXPECT_EQ(explainFrame(renderer_, nullptr, 9), 1);
  expect_no_error();
}

// How a picture differs from the same without volume and surface.
struct Difference {
  bool nothing = true;
  bool even = true;  // one colour at most
};

Difference difference(const Picture& picture, const Picture& without) {
  Difference result;
  const std::uint8_t* first = nullptr;
  picture.for_each([&](int x, int y) {
    const auto apart = [&](const std::uint8_t* a, const std::uint8_t* b) {
      int most = 0;
      for (int c = 0; c < 3; ++c) most = std::max(most, std::abs(int{a[c]} - int{b[c]}));
      return most;
    };
    const std::uint8_t* const pixel = picture.pixel(x, y);
    if (apart(pixel, without.pixel(x, y)) < 3) return;
    result.nothing = false;
    if (!first) first = pixel;
    result.even = result.even && apart(pixel, first) < 3;
  });
  return result;
}

void empty_by_chance(VolumeScene& scene, Choice& choice) {
  switch (choice.below(9)) {
    case 0:
      scene.translation = {choice.between(-4.0, 4.0), choice.between(-3.0, 3.0), 0.0};
      break;
    case 1:
      scene.clip = true, scene.clip_value = static_cast<float>(choice.between(-0.1, 0.3));
      break;
    case 2:
      scene.coloring.lower += 0.7, scene.coloring.upper += 0.7;
      break;
    case 3:
      scene.slices_uploaded = choice.below(2);
      break;
    case 4:
      scene.coloring.colors = ramp_colors(9, choice.of({0.0, 0.01}));
      break;
    case 5:
      scene.sectional = true, scene.sections[2].shown = choice.one_of(2);
      break;
    case 6:
      scene.zoom = choice.of({170.0, 174.9, -3.0});
      break;
    case 7:
      scene.translation = {0.0, 0.0, choice.between(2.0, 9.0)};
      break;
    default:
      scene.coloring.lower = choice.of({2.0, 1e9, -1e9}), scene.coloring.upper = 1e9 + 1.0;
      break;
  }
}

TEST_F(VolumeTest, WhatShowsIsNeverExplainedAway) {
  int empty = 0;
  int known_everywhere = 0;
  for (unsigned seed = 0; seed < 42; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Choice choice(seed);
    scene_ = random_scene(choice);
    // Lines have the colour of what they are drawn on.
    scene_.background_bottom = scene_.background_top = scene_.foreground = 0x60A020FFU;
    if (choice.one_of(5)) scene_.mode = 2;
    if (seed % 3 != 0) empty_by_chance(scene_, choice);
    setRenderElements(renderer_, 0, 0);  // of the scene before
    stage_.prepare(scene_);
    const Picture shown = frame(scene_.content);
    const std::string from_settings = on_another_thread(renderer_);
    const std::string text = explanation_of(renderer_);
    EXPECT_EQ(frame(scene_.content).bytes, shown.bytes) << "after the question";
    setRenderElements(renderer_, 0, 0);
    const Difference found = difference(shown, frame(scene_.content));
    const auto agrees = [&](const Difference& seen) {
      return text.empty() ? !seen.nothing : seen.nothing || seen.even;
    };
    // The library's lines may cover a sliver of a volume, or paint over what is even; the reference has none.
    EXPECT_TRUE(agrees(found) ||
                agrees(difference(reference_picture(scene_).picture, background_picture(scene_))))
        << text;
    EXPECT_TRUE(from_settings.empty() || from_settings == text) << from_settings;
    empty += found.nothing;
    known_everywhere += found.nothing && !from_settings.empty();
  }
  EXPECT_GT(empty, 12);
  EXPECT_GT(known_everywhere, empty / 5) << "of " << empty;
  expect_no_error();
}

}  // namespace
}  // namespace oct::test
