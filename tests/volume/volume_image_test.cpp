// Whole pictures of ray-cast volumes against a ray caster on the CPU.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

#include "support/test_context.h"
#include "support/volume_reference.h"

namespace oct::test {
namespace {

struct Case {
  std::string name;
  std::function<void(VolumeScene&)> change;
};

// Seen from above the corner, with every axis of a different extent.
VolumeScene baseScene() {
  VolumeScene scene = sceneOf(testVolume(40, 28, 34), 97, 71, 25.0, -35.0);
  scene.range = {1.5F, 2.0F, 2.5F};
  scene.coloring = {rampColors(256, 0.3), 0.2, 1.0};
  return scene;
}

// A ray along the rim of the box passes through less than a step; where the two rasterise a rim differently,
// or stop a step apart, one pixel differs by much. Elsewhere rounding is left.
constexpr Tolerance tolerance{1, 0.995, 140, 0.1};

// One stage for many scenes: nothing of an earlier one may show in a later one.
void expectPictures(const std::vector<Case>& cases) {
  VolumeStage stage;
  for (const Case& tested : cases) {
    SCOPED_TRACE(tested.name);
    VolumeScene scene = baseScene();
    tested.change(scene);
    const Picture picture = stage.draw(scene);
    EXPECT_EQ(pendingError(), "(none)");
    EXPECT_TRUE(agree(picture, referencePicture(scene), tolerance));
  }
}

void addOverlay(VolumeScene& scene) {
  scene.overlay = testVolume(40, 28, 34, 7);
  scene.overlayColoring = {rampColors(64, 0.8), 0.6, 1.4};
  scene.content = 2;
}

void addSecondary(VolumeScene& scene) {
  scene.secondary = testVolume(3, 28, 34, 9);
  scene.secondaryColoring = {opaqueColors(32), 0.0, 1.0};
  scene.secondaryIndex = 1;
  scene.mode = 3;
}

TEST(VolumeImageTest, Modes) {
  expectPictures({
      {"hard compositing", [](auto& s) { s.coloring.colors = rampColors(256, 1.0); }},
      {"maximum beyond upper", [](auto& s) { s.mode = 1, s.coloring.upper = 0.7; }},
      {"dual colouring, last image", [](auto& s) { addSecondary(s), s.secondaryIndex = 2; }},
      {"hard overlay", [](auto& s) { addOverlay(s), s.coloring.colors = rampColors(256, 1.0); }},
  });
}

void clip(VolumeScene& scene, float value) {
  scene.clip = true;
  scene.clipValue = value;
}

class EveryCombination : public testing::TestWithParam<int> {};

TEST_P(EveryCombination, EqualsTheArithmetic) {
  const int mode = GetParam();
  std::vector<Case> cases;
  for (int i = 0; i < 12; ++i) {
    const int content = i % 3;
    const bool perspective = i / 3 % 2 != 0;
    const bool clipped = i / 6 != 0;
    cases.push_back({"content " + std::to_string(content) + (perspective ? "" : ", orthographic") +
                         (clipped ? ", clipped" : ""),
                     [=](VolumeScene& s) {
                       addOverlay(s), addSecondary(s);
                       s.mode = mode, s.content = content, s.perspective = perspective;
                       if (mode == 2) s.coloring.upper = 0.6;
                       if (clipped) clip(s, 0.45F);
                     }});
  }
  expectPictures(cases);
}

INSTANTIATE_TEST_SUITE_P(Mode, EveryCombination, testing::Range(0, 4));

// A mean along no steps divides by zero; what that looks like is the driver's choice.
TEST(VolumeImageTest, Slices) {
  std::vector<Case> cases;
  for (const int mode : {0, 1, 2}) {
    for (const int count : {0, 1, 17, 512}) {
      if (mode == 2 && count < 17) continue;
      const double opacity = std::min(1.0, 30.0 / (count + 1));
      cases.push_back({std::to_string(count) + " in mode " + std::to_string(mode), [=](VolumeScene& s) {
                         s.slices = count, s.mode = mode;
                         s.coloring.colors = mode == 0 ? rampColors(256, opacity) : opaqueColors(256);
                       }});
    }
  }
  expectPictures(cases);
}

TEST(VolumeImageTest, Views) {
  using Range = std::array<float, 3>;
  expectPictures({
      {"from the front", [](auto& s) { s.angleX = 3.0, s.angleY = 2.0; }},
      {"from below", [](auto& s) { s.angleX = -70.0, s.angleY = 160.0; }},
      {"from behind", [](auto& s) { s.angleX = 200.0, s.angleY = -540.0 + 20.0; }},
      {"close", [](auto& s) { s.zoom = 15.0; }},
      {"close, orthographic", [](auto& s) { s.perspective = false, s.zoom = 14.0; }},
      {"moved",
       [](auto& s) {
         s.translation = std::array{0.5, -0.3, -0.6};
       }},
      {"tall", [](auto& s) { s.viewportWidth = 33, s.viewportHeight = 120; }},
      {"wide", [](auto& s) { s.viewportWidth = 151, s.viewportHeight = 21; }},
      {"flat",
       [](auto& s) {
         s.range = Range{0.2F, 3.0F, 2.0F};
       }},
      {"deep and thin",
       [](auto& s) {
         s.range = Range{3.0F, 0.4F, 0.3F};
       }},
      {"millimetres",
       [](auto& s) {
         s.range = Range{0.003F, 0.006F, 0.006F};
       }},
      {"mirrored",
       [](auto& s) {
         s.range = Range{1.5F, -2.0F, 2.5F};
       }},
  });
}

TEST(VolumeImageTest, Data) {
  using Colors = std::vector<std::uint32_t>;
  expectPictures({
      {"half filled", [](auto& s) { s.slicesUploaded = 17; }},
      {"one slice filled", [](auto& s) { s.slicesUploaded = 1; }},
      {"all but one filled", [](auto& s) { s.slicesUploaded = 33, s.angleY = 150.0, s.mode = 1; }},
      {"one voxel",
       [](auto& s) {
         s.volume = Volume{1, 1, 1, {0.75F}};
       }},
      {"one slice", [](auto& s) { s.volume = testVolume(31, 17, 1); }},
      {"odd sizes", [](auto& s) { s.volume = testVolume(37, 5, 13); }},
      {"inverted", [](auto& s) { s.mode = 1, s.coloring.lower = 1.0, s.coloring.upper = 0.0; }},
      {"two colours",
       [](auto& s) {
         s.coloring.colors = Colors{0x00FF2010U, 0x20F0E0A0U};
       }},
      {"one colour", [](auto& s) { s.coloring.colors = Colors{0x10F0A020U}; }},
      {"exactly at the lower boundary, where nothing is visible",
       [](auto& s) {
         s.volume.voxels.assign(s.volume.voxels.size(), 0.5F);
         s.coloring = {opaqueColors(16), 0.5, 1.0};
       }},
  });
}

void fixedAt(VolumeScene& scene, double angleX, double angleY) {
  scene.clipFixed = true;
  scene.fixedAngleX = angleX;
  scene.fixedAngleY = angleY;
}

TEST(VolumeImageTest, Clipped) {
  expectPictures({
      {"almost all", [](auto& s) { clip(s, 0.1F); }},
      {"almost nothing", [](auto& s) { clip(s, 0.9F); }},
      {"open", [](auto& s) { clip(s, 0.5F), s.clipOpen = true, s.coloring.colors = opaqueColors(256); }},
      {"another angle", [](auto& s) { clip(s, 0.5F), s.angleX = -40.0, s.angleY = 110.0; }},
      // Corners of the box count as several points of the cut; its parts are drawn once all the same.
      {"through corners", [](auto& s) { clip(s, 0.5F), s.angleX = 0.0, s.angleY = 45.0; }},
      {"fixed from the side", [](auto& s) { clip(s, 0.5F), fixedAt(s, 10.0, 30.0); }},
      // Seen through the volume: rays leave through the cut.
      {"fixed from behind",
       [](auto& s) {
         clip(s, 0.5F), fixedAt(s, 10.0, 170.0), s.coloring.colors = opaqueColors(64), s.mode = 1;
       }},
  });
}

}  // namespace
}  // namespace oct::test
