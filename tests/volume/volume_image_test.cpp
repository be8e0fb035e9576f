// Whole pictures of ray-cast volumes against a ray caster on the CPU.
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <ostream>
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

void PrintTo(const Case& value, std::ostream* stream) {
  *stream << value.name;
}

// Seen from above the corner, with every axis of a different extent.
VolumeScene baseScene() {
  VolumeScene scene;
  scene.volume = testVolume(40, 28, 34);
  scene.angleX = 25.0;
  scene.angleY = -35.0;
  scene.range = {1.5F, 2.0F, 2.5F};
  scene.coloring = {rampColors(256, 0.3), 0.2, 1.0};
  return scene;
}

// A ray along the rim of the box passes through less than a step; where the two rasterise a rim differently,
// or stop a step apart, one pixel differs by much. Elsewhere rounding is left.
constexpr Tolerance tolerance{1, 0.995, 140, 0.1};

class VolumeImageTest : public testing::TestWithParam<Case> {};

TEST_P(VolumeImageTest, EqualsTheArithmetic) {
  VolumeScene scene = baseScene();
  GetParam().change(scene);
  VolumeStage stage;
  const Picture picture = stage.draw(scene);
  EXPECT_EQ(pendingError(), "(none)");
  EXPECT_TRUE(agree(picture, referencePicture(scene), tolerance));
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

INSTANTIATE_TEST_SUITE_P(
    Modes, VolumeImageTest,
    testing::Values(
        Case{"HardCompositing", [](VolumeScene& s) { s.coloring.colors = rampColors(256, 1.0); }},
        Case{"MaximumBeyondUpper", [](VolumeScene& s) { s.mode = 1, s.coloring.upper = 0.7; }},
        Case{"DualColoringLastImage", [](VolumeScene& s) { addSecondary(s), s.secondaryIndex = 2; }},
        Case{"OverlayHard", [](VolumeScene& s) { addOverlay(s), s.coloring.colors = rampColors(256, 1.0); }}),
    [](const auto& tested) { return tested.param.name; });

void clip(VolumeScene& scene, float value) {
  scene.clip = true;
  scene.clipValue = value;
}

std::vector<Case> everyCombination() {
  std::vector<Case> cases;
  for (const int mode : {0, 1, 2, 3}) {
    for (const int content : {0, 1, 2}) {
      for (const bool perspective : {true, false}) {
        for (const bool clipped : {false, true}) {
          const std::string name = "Mode" + std::to_string(mode) + "Content" + std::to_string(content) +
                                   (perspective ? "" : "Orthographic") + (clipped ? "Clipped" : "");
          cases.push_back({name, [=](VolumeScene& s) {
                             addOverlay(s), addSecondary(s);
                             s.mode = mode, s.content = content, s.perspective = perspective;
                             if (mode == 2) s.coloring.upper = 0.6;
                             if (clipped) clip(s, 0.45F);
                           }});
        }
      }
    }
  }
  return cases;
}

INSTANTIATE_TEST_SUITE_P(Everything, VolumeImageTest, testing::ValuesIn(everyCombination()),
                         [](const auto& tested) { return tested.param.name; });

std::function<void(VolumeScene&)> slices(int count, int mode) {
  return [=](VolumeScene& s) {
    s.slices = count;
    s.mode = mode;
    s.coloring.colors = mode == 0 ? rampColors(256, std::min(1.0, 30.0 / (count + 1))) : opaqueColors(256);
  };
}

// A mean along no steps divides by zero; what that looks like is the driver's choice.
INSTANTIATE_TEST_SUITE_P(Slices, VolumeImageTest,
                         testing::Values(Case{"Composite0", slices(0, 0)}, Case{"Composite1", slices(1, 0)},
                                         Case{"Composite17", slices(17, 0)},
                                         Case{"Composite512", slices(512, 0)}, Case{"Maximum0", slices(0, 1)},
                                         Case{"Maximum1", slices(1, 1)}, Case{"Maximum17", slices(17, 1)},
                                         Case{"Maximum512", slices(512, 1)}, Case{"Mean17", slices(17, 2)},
                                         Case{"Mean512", slices(512, 2)}),
                         [](const auto& tested) { return tested.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Views, VolumeImageTest,
    testing::Values(Case{"FromTheFront", [](VolumeScene& s) { s.angleX = 3.0, s.angleY = 2.0; }},
                    Case{"FromBelow", [](VolumeScene& s) { s.angleX = -70.0, s.angleY = 160.0; }},
                    Case{"FromBehind", [](VolumeScene& s) { s.angleX = 200.0, s.angleY = -540.0 + 20.0; }},
                    Case{"Close", [](VolumeScene& s) { s.zoom = 15.0; }},
                    Case{"CloseOrthographic", [](VolumeScene& s) { s.perspective = false, s.zoom = 14.0; }},
                    Case{"Moved",
                         [](VolumeScene& s) {
                           s.translation = {0.5, -0.3, -0.6};
                         }},
                    Case{"Tall", [](VolumeScene& s) { s.viewportWidth = 33, s.viewportHeight = 120; }},
                    Case{"Wide", [](VolumeScene& s) { s.viewportWidth = 151, s.viewportHeight = 21; }},
                    Case{"Flat",
                         [](VolumeScene& s) {
                           s.range = {0.2F, 3.0F, 2.0F};
                         }},
                    Case{"DeepAndThin",
                         [](VolumeScene& s) {
                           s.range = {3.0F, 0.4F, 0.3F};
                         }},
                    Case{"Millimetres",
                         [](VolumeScene& s) {
                           s.range = {0.003F, 0.006F, 0.006F};
                         }},
                    Case{"Mirrored",
                         [](VolumeScene& s) {
                           s.range = {1.5F, -2.0F, 2.5F};
                         }}),
    [](const auto& tested) { return tested.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Data, VolumeImageTest,
    testing::Values(
        Case{"HalfFilled", [](VolumeScene& s) { s.slicesUploaded = 17; }},
        Case{"OneSliceFilled", [](VolumeScene& s) { s.slicesUploaded = 1; }},
        Case{"AllButOneFilled", [](VolumeScene& s) { s.slicesUploaded = 33, s.angleY = 150.0, s.mode = 1; }},
        Case{"OneVoxel",
             [](VolumeScene& s) {
               s.volume = {1, 1, 1, {0.75F}};
             }},
        Case{"OneSlice", [](VolumeScene& s) { s.volume = testVolume(31, 17, 1); }},
        Case{"OddSizes", [](VolumeScene& s) { s.volume = testVolume(37, 5, 13); }},
        Case{"Inverted", [](VolumeScene& s) { s.mode = 1, s.coloring.lower = 1.0, s.coloring.upper = 0.0; }},
        Case{"TwoColors",
             [](VolumeScene& s) {
               s.coloring.colors = {0x00FF2010U, 0x20F0E0A0U};
             }},
        Case{"OneColor", [](VolumeScene& s) { s.coloring.colors = {0x10F0A020U}; }},
        // Exactly at the lower boundary: nothing is visible.
        Case{"AtTheLowerBoundary",
             [](VolumeScene& s) {
               s.volume.voxels.assign(s.volume.voxels.size(), 0.5F);
               s.coloring = {opaqueColors(16), 0.5, 1.0};
             }}),
    [](const auto& tested) { return tested.param.name; });

INSTANTIATE_TEST_SUITE_P(
    Clipped, VolumeImageTest,
    testing::Values(
        Case{"AlmostAll", [](VolumeScene& s) { clip(s, 0.1F); }},
        Case{"AlmostNothing", [](VolumeScene& s) { clip(s, 0.9F); }},
        Case{"Open",
             [](VolumeScene& s) { clip(s, 0.5F), s.clipOpen = true, s.coloring.colors = opaqueColors(256); }},
        Case{"AnotherAngle", [](VolumeScene& s) { clip(s, 0.5F), s.angleX = -40.0, s.angleY = 110.0; }},
        // Corners of the box count as several points of the cut; its parts are drawn once all the same.
        Case{"ThroughCorners", [](VolumeScene& s) { clip(s, 0.5F), s.angleX = 0.0, s.angleY = 45.0; }},
        Case{"FixedFromTheSide",
             [](VolumeScene& s) {
               clip(s, 0.5F), s.clipFixed = true, s.fixedAngleX = 10.0, s.fixedAngleY = 30.0;
             }},
        // Seen through the volume: rays leave through the cut.
        Case{"FixedFromBehind",
             [](VolumeScene& s) {
               clip(s, 0.5F), s.clipFixed = true, s.fixedAngleX = 10.0, s.fixedAngleY = 170.0,
                              s.coloring.colors = opaqueColors(64), s.mode = 1;
             }}),
    [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace oct::test
