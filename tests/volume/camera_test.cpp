// Angles and depth of the camera, without OpenGL.
#include <gtest/gtest.h>

#include "volume/layout/camera.h"

namespace oct::test {
namespace {

TEST(CameraTest, AnglesWrapByWholeTurns) {
  for (const auto& [angle, wrapped] : {std::pair{190.0, -170.0},
                                       {-190.0, 170.0},
                                       {540.0, 180.0},
                                       {-540.0, -180.0},
                                       {180.0, 180.0},
                                       {-180.0, -180.0},
                                       {725.0, 5.0}}) {
    EXPECT_EQ(wrappedAngle(angle), wrapped);
  }
  EXPECT_NEAR(wrappedAngle(3600000.5), 0.5, 1e-6);
}

// The rest of the camera shows in the pictures, whose reference has formulas of its own.
TEST(CameraTest, SeesFromThreeToEight) {
  const Camera camera = cameraOf({}, {}, {200, 100});
  for (const auto& [z, onScreen] : {std::pair{2.0F, -1.0F}, {-3.0F, 1.0F}}) {
    const glm::vec4 clip = camera.projection * camera.modelview * glm::vec4(0.0F, 0.0F, z, 1.0F);
    EXPECT_NEAR(clip.z / clip.w, onScreen, 1e-5);
  }
}

}  // namespace
}  // namespace oct::test
