// Whole pictures of ray-cast volumes against a ray caster on the CPU.
#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

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
// or stop a step apart, one pixel differs. Nowhere else.
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
        Case{"Compositing", [](VolumeScene&) {}},
        Case{"HardCompositing", [](VolumeScene& s) { s.coloring.colors = rampColors(256, 1.0); }},
        Case{"Maximum", [](VolumeScene& s) { s.mode = 1; }},
        Case{"MaximumBeyondUpper", [](VolumeScene& s) { s.mode = 1, s.coloring.upper = 0.7; }},
        Case{"Mean", [](VolumeScene& s) { s.mode = 2, s.coloring.upper = 0.6; }},
        Case{"DualColoring", addSecondary},
        Case{"DualColoringLastImage", [](VolumeScene& s) { addSecondary(s), s.secondaryIndex = 2; }},
        Case{"Overlay", addOverlay},
        Case{"OverlayHard", [](VolumeScene& s) { addOverlay(s), s.coloring.colors = rampColors(256, 1.0); }},
        Case{"OverlayMaximum", [](VolumeScene& s) { addOverlay(s), s.mode = 1; }},
        Case{"OverlayMean", [](VolumeScene& s) { addOverlay(s), s.mode = 2; }},
        Case{"OverlayAlone", [](VolumeScene& s) { addOverlay(s), s.content = 1; }},
        Case{"OverlayAloneMaximum", [](VolumeScene& s) { addOverlay(s), s.content = 1, s.mode = 1; }}),
    [](const auto& tested) { return tested.param.name; });

}  // namespace
}  // namespace oct::test
