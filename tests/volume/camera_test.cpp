// Camera and range, without OpenGL.
#include <gtest/gtest.h>

#include <cmath>

#include "volume/box.h"
#include "volume/camera.h"

namespace oct::test {
namespace {

constexpr Viewport viewport{200, 100};

glm::vec3 onScreen(const Camera& camera, const glm::vec3& point) {
  const glm::vec4 clip = camera.projection * camera.modelview * glm::vec4(point, 1.0F);
  return glm::vec3(clip) / clip.w;
}

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

TEST(CameraTest, TheHalfDiagonalIsTwoWhateverTheUnit) {
  const Range range = rangeOf(2.0, 1.0, 1.0);
  EXPECT_NEAR(range.modelScale.x, 0.8165, 5e-5);
  EXPECT_NEAR(range.modelScale.y, -1.633, 5e-4);
  EXPECT_NEAR(range.modelScale.z, 0.8165, 5e-5);
  EXPECT_EQ(range.extent, glm::vec3(2.0F, 1.0F, 1.0F));
  for (const double unit : {1e-6, 1.0, 1e6}) {
    EXPECT_NEAR(glm::length(rangeOf(2.5 * unit, 6.0 * unit, 4.0 * unit).modelScale), 2.0, 1e-5);
  }
}

TEST(CameraTest, PerspectiveIsFortyFiveDegreesAtZoomForty) {
  const Camera camera = cameraOf({}, {}, viewport);
  EXPECT_NEAR(camera.projection[1][1], 1.0 / std::tan(22.5 * 3.14159265 / 180.0), 1e-6);
  EXPECT_NEAR(camera.projection[0][0], camera.projection[1][1] / 2.0, 1e-6);
  // The near plane lies at a distance of 3, the far plane at 8.
  EXPECT_NEAR(onScreen(camera, {0.0F, 0.0F, 2.0F}).z, -1.0, 1e-5);
  EXPECT_NEAR(onScreen(camera, {0.0F, 0.0F, -3.0F}).z, 1.0, 1e-5);
}

TEST(CameraTest, OrthographicShowsAFifthOfTheZoom) {
  View view;
  view.perspective = false;
  const Camera camera = cameraOf(view, {}, viewport);
  EXPECT_NEAR(onScreen(camera, {4.0F, 0.0F, 0.0F}).x, 1.0, 1e-6);  // 8 units wide at zoom 40
  EXPECT_NEAR(onScreen(camera, {0.0F, -2.0F, 1.0F}).y, 1.0, 1e-6);
}

TEST(CameraTest, DepthRunsDownAndAnglesTurnXThenY) {
  View view;
  view.angleX = 90.0F;
  view.angleY = 90.0F;
  view.translation = {0.25F, 0.5F, -1.0F};
  const Camera camera = cameraOf(view, rangeOf(1.0, 1.0, 1.0), viewport);
  const float s = rangeOf(1.0, 1.0, 1.0).modelScale.x;
  // y of the model is mirrored; the turn about y brings x to -z, the one about x brings -z to y.
  const glm::vec3 x = glm::vec3(camera.modelview * glm::vec4(1.0F, 0.0F, 0.0F, 1.0F));
  EXPECT_NEAR(x.x, 0.25, 1e-5);
  EXPECT_NEAR(x.y, 0.5 + s, 1e-5);
  EXPECT_NEAR(x.z, -6.0, 1e-5);
  const glm::vec3 y = glm::vec3(camera.modelview * glm::vec4(0.0F, 1.0F, 0.0F, 1.0F));
  EXPECT_NEAR(y.z, -6.0 - s, 1e-5);
}

TEST(CameraTest, NormalsStayUprightUnderScaling) {
  View view;
  view.angleX = 30.0F;
  view.angleY = -50.0F;
  const Camera camera = cameraOf(view, rangeOf(1.0, 3.0, 7.0), viewport);
  const glm::vec3 alongSurface = glm::mat3(camera.modelview) * glm::vec3(1.0F, -2.0F, 0.0F);
  const glm::vec3 normal = camera.normal * glm::vec3(2.0F, 1.0F, 0.0F);
  EXPECT_NEAR(glm::dot(alongSurface, normal), 0.0, 1e-4);
}

TEST(BoxTest, EndsAtTheCentreOfTheLastFilledSlice) {
  EXPECT_EQ(filledEnd(1.0F, 10), 1.0F);
  EXPECT_NEAR(filledEnd(0.5F, 10), -0.1, 1e-6);
  EXPECT_NEAR(filledEnd(0.9F, 10), 0.7, 1e-6);
  EXPECT_LE(filledEnd(0.0F, 10), -1.0F);
  EXPECT_NEAR(filledEnd(0.25F, 0), -0.5, 1e-6);
}

}  // namespace
}  // namespace oct::test
