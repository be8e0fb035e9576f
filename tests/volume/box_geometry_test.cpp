// Where the camera and the clip plane stand and which triangles a surface has, without OpenGL. The rest shows in the
// pictures.
#include <cmath>
#include <limits>
#include <vector>

#include <gtest/gtest.h>

#include "volume/layout/camera.h"
#include "volume/layout/clip_plane.h"
#include "volume/layout/surface_mesh.h"

namespace oct::test {
namespace {

TEST(CameraTest, AnglesWrapByWholeTurns) {
  for (const auto& [angle, wrapped] :
       {std::pair{190.0, -170.0}, {540.0, 180.0}, {180.0, 180.0}, {725.0, 5.0}}) {
    EXPECT_EQ(wrapped_angle(angle), wrapped);
    EXPECT_EQ(wrapped_angle(-angle), -wrapped);
  }
  EXPECT_NEAR(wrapped_angle(3600000.5), 0.5, 1e-6);
}

// The rest of the camera shows in the pictures, whose reference has formulas of its own.
TEST(CameraTest, SeesFromThreeToEight) {
  const Camera camera = camera_of({}, {}, {200, 100});
  for (const auto& [z, on_screen] : {std::pair{2.0F, -1.0F}, {-3.0F, 1.0F}}) {
    const glm::vec4 clip = camera.projection * camera.modelview * glm::vec4(0.0F, 0.0F, z, 1.0F);
    EXPECT_NEAR(clip.z / clip.w, on_screen, 1e-5);
  }
}

View view_at(float angle_x, float angle_y) {
  View view;
  view.angle_x = angle_x;
  view.angle_y = angle_y;
  return view;
}

void expect_nothing_cut(const ClipPlane& clip) {
  EXPECT_EQ(clip.plane(), glm::vec4(0.0F));
  EXPECT_TRUE(clip.intersections().empty());
  EXPECT_TRUE(clip.border().empty());
  EXPECT_TRUE(clip.cut_face().empty());
}

TEST(ClipPlaneTest, FixedItKeepsItsOrientationButNotItsPlace) {
  ClipPlane clip;
  const auto normal_at = [&clip](bool enabled, float value, const View& view) {
    clip.set(enabled, false, value);
    clip.update(view);
    return glm::vec3(clip.plane());
  };
  clip.update(view_at(10, 20));
  expect_nothing_cut(clip);
  clip.set_fixed(true);
  normal_at(true, 0.3F, view_at(10, 20));
  expect_nothing_cut(clip);  // fixed before its first frame it has no orientation
  clip.set_fixed(false);
  const glm::vec3 first = normal_at(true, 0.5F, view_at(10, 20));
  clip.set_fixed(true);
  EXPECT_EQ(normal_at(true, 0.5F, view_at(-60, 130)), first);
  EXPECT_EQ(normal_at(true, 0.75F, view_at(0, 0)), first);
  EXPECT_GT(clip.plane().w, 0.0F);
  normal_at(false, 0.75F, view_at(33, 44));
  expect_nothing_cut(clip);
  EXPECT_EQ(normal_at(true, 0.5F, view_at(33, 44)), first) << "a pause changes nothing";
  clip.set_fixed(false);
  normal_at(true, 0.5F, view_at(0, 0));
  EXPECT_EQ(clip.plane(), glm::vec4(0, 0, -1, 0)) << "it faces the viewer again";
}

TEST(SurfaceMeshTest, SamplesThatAreNoNumbersLeaveAHoleAndAPointHasNoTriangles) {
  std::vector<float> depths(6 * 5, 20.0F);
  depths[2 * 6 + 3] = std::numeric_limits<float>::quiet_NaN();
  depths[0] = std::numeric_limits<float>::infinity();
  const SurfaceMesh mesh = surface_mesh(6, 5, 80.0, depths.data());
  EXPECT_EQ(mesh.triangles.size(), (5U * 4U - 4U - 1U) * 2U * 3U);
  for (const std::uint32_t index : mesh.triangles) {
    EXPECT_TRUE(std::isfinite(mesh.vertices[index].z));
    EXPECT_NEAR(glm::length(mesh.normals[index]), 1.0F, 1e-5F);
  }
  const float value = 1.0F;
  const SurfaceMesh point = surface_mesh(1, 1, 4.0, &value);
  EXPECT_EQ(point.vertices, (std::vector<glm::vec3>{{0.0F, 0.0F, -0.5F}}));
  EXPECT_TRUE(point.triangles.empty());
}

}  // namespace
}  // namespace oct::test
