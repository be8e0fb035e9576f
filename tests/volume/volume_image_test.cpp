// Whole pictures of volumes and of the scene around them against the layers that a CPU computes.
#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>
#include <vector>

#include "support/reference/reference_camera.h"
#include "support/reference/volume_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

using Change = std::function<void(VolumeScene&)>;
struct Case {
  std::string name;
  Change change;
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
constexpr Tolerance rays{1, 0.995, 140, 0.1};

// One stage for many scenes: nothing of an earlier one may show in a later one.
void expectPictures(VolumeStage& stage, const VolumeScene& base, Tolerance tolerance,
                    const std::vector<Case>& cases, bool lines = false) {
  for (const auto& [name, change] : cases) {
    SCOPED_TRACE(name);
    VolumeScene scene = base;
    change(scene);
    const Picture picture = stage.draw(scene);
    EXPECT_EQ(pendingError(), "(none)");
    const ReferencePicture expected = referencePicture(scene);
    EXPECT_TRUE(agree(picture, expected, tolerance));
    if (!lines) continue;
    EXPECT_FALSE(expected.lines.empty());
    EXPECT_TRUE(linesShow(picture, expected, scene));
  }
}

void expectPictures(const std::vector<Case>& cases) {
  VolumeStage stage;
  expectPictures(stage, baseScene(), rays, cases);
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
    cases.push_back({"case " + std::to_string(i), [=](VolumeScene& s) {
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
      const double opacity = count == 512 ? 0.1 : 0.3;
      cases.push_back({std::to_string(count) + " slices, mode " + std::to_string(mode), [=](auto& s) {
                         s.slices = count, s.mode = mode;
                         s.coloring.colors = mode == 0 ? rampColors(256, opacity) : opaqueColors(256);
                       }});
    }
  }
  expectPictures(cases);
}

Change range(float axial, float lateral1, float lateral2) {
  return [=](VolumeScene& s) { s.range = {axial, lateral1, lateral2}; };
}

Change colors(std::vector<std::uint32_t> entries) {
  return [=](VolumeScene& s) { s.coloring.colors = entries; };
}

TEST(VolumeImageTest, Views) {
  expectPictures({
      {"from the front", [](auto& s) { s.angleX = 3.0, s.angleY = 2.0; }},
      {"from below", [](auto& s) { s.angleX = -70.0, s.angleY = 160.0; }},
      {"from behind", [](auto& s) { s.angleX = 200.0, s.angleY = -540.0 + 20.0; }},
      {"close", [](auto& s) { s.zoom = 15.0; }},
      {"close, orthographic", [](auto& s) { s.perspective = false, s.zoom = 14.0; }},
      {"moved", [](auto& s) { s.translation[0] = 0.5, s.translation[1] = -0.3, s.translation[2] = -0.6; }},
      {"tall", [](auto& s) { s.viewportWidth = 33, s.viewportHeight = 120; }},
      {"wide", [](auto& s) { s.viewportWidth = 151, s.viewportHeight = 21; }},
      {"flat", range(0.2F, 3.0F, 2.0F)},
      {"deep and thin", range(3.0F, 0.4F, 0.3F)},
      {"millimetres", range(0.003F, 0.006F, 0.006F)},
      {"mirrored", range(1.5F, -2.0F, 2.5F)},
  });
}

TEST(VolumeImageTest, Data) {
  expectPictures({
      {"half filled", [](auto& s) { s.slicesUploaded = 17; }},
      {"one slice filled", [](auto& s) { s.slicesUploaded = 1; }},
      {"all but one filled", [](auto& s) { s.slicesUploaded = 33, s.angleY = 150.0, s.mode = 1; }},
      {"one voxel", [](auto& s) { s.volume = testVolume(1, 1, 1), s.volume.voxels[0] = 0.75F; }},
      {"one slice", [](auto& s) { s.volume = testVolume(31, 17, 1); }},
      {"odd sizes", [](auto& s) { s.volume = testVolume(37, 5, 13); }},
      {"inverted", [](auto& s) { s.mode = 1, s.coloring.lower = 1.0, s.coloring.upper = 0.0; }},
      {"two colours", colors({0x00FF2010U, 0x20F0E0A0U})},
      {"one colour", colors({0x10F0A020U})},
      {"exactly at the lower boundary, where nothing is visible",
       [](auto& s) {
         s.volume.voxels.assign(s.volume.voxels.size(), 0.5F);
         s.coloring = {opaqueColors(16), 0.5, 1.0};
       }},
  });
}

void fixedAt(VolumeScene& scene, double angleX, double angleY) {
  clip(scene, 0.5F);
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
      {"fixed from the side", [](auto& s) { fixedAt(s, 10.0, 30.0); }},
      // Seen through the volume: rays leave through the cut.
      {"fixed from behind",
       [](auto& s) { fixedAt(s, 10.0, 170.0), s.coloring.colors = opaqueColors(64), s.mode = 1; }},
  });
}

Change slices(Slice x, Slice y, Slice z, double opacity = 1.0) {
  return [=](VolumeScene& s) {
    s.sectional = true;
    s.sections = {x, y, z};
    s.coloring = {opacity < 1.0 ? rampColors(64, opacity) : opaqueColors(64), 0.1, 0.9};
  };
}

// Where two slices meet, one pixel may show the other one.
TEST(VolumeImageTest, SectionalView) {
  VolumeScene base = baseScene();
  base.viewportWidth = 161;
  base.viewportHeight = 127;
  const Change apart = slices({true, 0.2F}, {true, 0.7F}, {true, 0.9F});
  const Change overlaid = slices({true, 0.5F}, {true, 0.4F}, {true, 0.25F});
  VolumeStage stage;
  expectPictures(stage, base, {1, 0.995, 255, 0.1},
                 {{"middle", slices({}, {}, {})},
                  {"apart", apart},
                  {"orthographic", [&](auto& s) { apart(s), s.perspective = false; }},
                  {"one hidden", slices({true, 0.3F}, {false, 0.6F}, {true, 0.6F})},
                  {"translucent", slices({true, 0.3F}, {true, 0.6F}, {true, 0.55F}, 0.7)},
                  {"overlay",
                   [&](auto& s) {
                     overlaid(s), addOverlay(s), s.overlayColoring.lower = 0.3, s.overlayColoring.upper = 1.1;
                   }},
                  {"low faces", slices({true, 0.0F}, {true, 0.0F}, {true, 0.0F})},
                  {"high faces", slices({true, 1.0F}, {true, 1.0F}, {true, 1.0F})},
                  {"beside the faces", slices({true, 0.99F}, {true, 0.01F}, {true, 0.01F}, 0.7)},
                  {"none", slices({false}, {false}, {false})}});
}

HeightMap waves(int width, int height) {
  HeightMap map{width, height, 80.0, {}};
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      map.values.push_back(
          static_cast<float>(38.0 + 13.0 * std::sin(0.9 * column) * std::cos(0.7 * row) + 0.8 * row));
    }
  }
  return map;
}

Change seenFrom(double angleX, double angleY, bool perspective = true) {
  return [=](VolumeScene& s) { s.angleX = angleX, s.angleY = angleY, s.perspective = perspective; };
}

VolumeScene surfaceScene() {
  VolumeScene scene = sceneOf(testVolume(8, 8, 8), 121, 97, 30.0, -25.0);
  scene.range = {1.2F, 2.0F, 2.6F};
  scene.surface = waves(12, 10);
  scene.surfaceColoring = {opaqueColors(48), 30.0, 52.0};
  scene.volumeShown = false;
  return scene;
}

// A silhouette pixel may fall to the other side; nothing else differs.
TEST(VolumeImageTest, Surface) {
  VolumeStage stage;
  expectPictures(stage, surfaceScene(), {1, 0.995, 255, 0.5},
                 {{"from above", seenFrom(30, -25)},
                  {"from below", seenFrom(-35, 160)},
                  {"steep", seenFrom(70, 10, false)},
                  {"along the grid", seenFrom(0, 0)},
                  {"two by two", [](auto& s) {
                     s.surface = {2, 2, 4.0, {1.0F, 3.0F, 1.0F, 3.0F}};
                     s.surfaceColoring.lower = 1.0, s.surfaceColoring.upper = 3.0;
                   }}});
  VolumeScene scene = surfaceScene();
  const Picture alone = stage.draw(scene);
  scene.volumeShown = true;
  scene.coloring.colors = {0x00000000U, 0x00000000U};
  EXPECT_TRUE(agree(stage.draw(scene), alone)) << "the near side's depth hides what lies inside";
  scene.surface = {2, 2, 1.0, std::vector<float>(4, std::numeric_limits<float>::quiet_NaN())};
  EXPECT_TRUE(agree(stage.draw(scene), backgroundPicture(scene), {1, 1.0, 1}));
}

VolumeScene emptyScene() {
  VolumeScene scene = sceneOf(testVolume(8, 8, 8), 200, 160, 25.0, -35.0);
  scene.range = {1.5F, 2.0F, 2.5F};
  scene.zoom = 45.0;
  scene.coloring.colors = {0x00000000U, 0x00000000U};  // nothing is seen of the volume
  return scene;
}

TEST(VolumeImageTest, Lines) {
  VolumeStage stage;
  expectPictures(
      stage, emptyScene(), exact,
      {{"edges", [](auto& s) { s.edges = true; }},
       {"edges, orthographic", [](auto& s) { s.edges = true, s.perspective = false, s.zoom = 32.0; }},
       {"border of the cut", [](auto& s) { clip(s, 0.45F); }},
       {"border through four edges", [](auto& s) { clip(s, 0.6F), seenFrom(10, 60)(s); }},
       {"border through three edges", [](auto& s) { clip(s, 0.15F), seenFrom(35, -45)(s); }},
       {"outline of a slice",
        [](auto& s) {
          slices({true, 0.3F}, {false}, {false})(s), colors({0xFF000000U})(s);
        }}},
      true);
}

TEST(VolumeImageTest, Panes) {
  VolumeStage stage;
  const auto ghost = [](VolumeScene& s) { clip(s, 0.45F), s.removedSegment = true; };
  const auto opaque = [](VolumeScene& s) { s.coloring = {{0xFF2040A0U}, -1.0, 1.0}; };
  expectPictures(stage, emptyScene(), {},
                 {{"nothing, with the value of a plane that is off", [](auto& s) { s.clipValue = 0.45F; }}});
  expectPictures(stage, emptyScene(), {2, 0.995, 60},
                 {{"the box is glass", [](auto& s) { s.box = true; }},
                  {"around a volume", [=](auto& s) { s.box = true, opaque(s); }}});
  expectPictures(stage, emptyScene(), {2, 0.998, 255},
                 {{"the removed segment is a ghost", ghost},
                  {"before a volume", [=](auto& s) { ghost(s), opaque(s); }},
                  {"behind one", [=](auto& s) { ghost(s), fixedAt(s, 20.0, 130.0), opaque(s); }}});
}

}  // namespace
}  // namespace oct::test
