// What is cut out of the volume's box, and where the camera stands. Without OpenGL.
#include <algorithm>
#include <cmath>
#include <random>

#include <gtest/gtest.h>

#include "support/reference/reference_camera.h"
#include "volume/layout/clip_plane.h"
#include "volume/passes/sectional_view.h"

namespace oct::test {
namespace {

using Triangles = std::vector<glm::vec3>;

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

// How many triangles a point lies in, and how many more of them look along the direction than against it.
std::pair<int, int> covering(const Triangles& triangles, const glm::dvec3& point,
                             const glm::dvec3& direction) {
  int count = 0;
  int along = 0;
  for (std::size_t i = 0; i < triangles.size(); i += 3) {
    const glm::dvec3 a(triangles[i]), b(triangles[i + 1]), c(triangles[i + 2]);
    const auto met = meeting({point - direction, direction}, a, b, c);
    if (!met || std::abs(met->t - 1.0) > 1e-5) continue;
    ++count;
    along += glm::dot(glm::cross(b - a, c - a), direction) > 0.0 ? 1 : -1;
  }
  return {count, along};
}

TEST(ClipPlaneTest, TrianglesCoverTheCutAndWhatIsCutOff) {
  std::mt19937 generator(5);
  std::uniform_real_distribution<float> angle(-180.0F, 180.0F);
  std::uniform_real_distribution<double> place(-1.1, 1.1);
  std::vector<View> views{view_at(0, 0), view_at(90, 0), view_at(0, 45)};
  for (int i = 0; i < 60; ++i) views.push_back(view_at(angle(generator), angle(generator)));
  for (const View& view : views) {
    for (const float value : {0.08F, 0.3F, 0.5F, 0.85F}) {
      ClipPlane clip;
      clip.set(true, false, value);
      clip.update(view);
      const glm::dvec3 normal(clip.plane());
      const auto distance = [&](const glm::dvec3& p) { return glm::dot(normal, p) + clip.plane().w; };
      for (int i = 0; i < 100; ++i) {
        SCOPED_TRACE(testing::Message() << view.angle_x << ", " << view.angle_y << ", " << value);
        glm::dvec3 p(place(generator), place(generator), place(generator));
        const glm::dvec3 on_plane = p - normal * distance(p) / glm::dot(normal, normal);
        const glm::dvec3 reach = glm::abs(on_plane);
        const double beyond = std::max({reach.x, reach.y, reach.z}) - 1.0;
        // Each part of the cut comes in both windings.
        if (std::abs(beyond) > 1e-4) {
          ASSERT_EQ(covering(clip.cut_face(), on_plane, normal), std::pair(beyond < 0.0 ? 2 : 0, 0));
        }

        const int axis = i % 3;
        p[axis] = i % 2 == 0 ? 1.0 : -1.0;
        glm::dvec3 outwards(0.0);
        outwards[axis] = p[axis];
        const bool on_face = std::abs(p[(axis + 1) % 3]) < 1.0 && std::abs(p[(axis + 2) % 3]) < 1.0;
        if (std::abs(distance(p)) < 1e-4) continue;
        ASSERT_EQ(covering(removed_faces(clip.plane()), p, outwards).first, on_face && distance(p) < 0.0);
      }
    }
  }
  EXPECT_TRUE(removed_faces({0, 0, -1, 2}).empty());
  EXPECT_EQ(removed_faces({0, 0, -1, -2}).size(), 6U * 2U * 3U);
}

TEST(SectionTrianglesTest, AreDrawnFromFarToNear) {
  std::mt19937 generator(11);
  std::uniform_real_distribution<float> unit(0.0F, 1.0F);
  std::uniform_real_distribution<double> place(-6.0, 6.0);
  std::uniform_real_distribution<double> inside(-1.0, 1.0);
  for (int scene = 0; scene < 60; ++scene) {
    const Sections sections{Section{scene % 7 != 1, unit(generator)},
                            Section{scene % 5 != 1, unit(generator)},
                            Section{scene % 3 != 1, unit(generator)}};
    const bool orthographic = scene % 2 != 0;
    const glm::dvec3 eye(place(generator), place(generator), place(generator));
    const Triangles triangles =
        section_triangles(sections, glm::vec4(glm::vec3(eye), orthographic ? 0.0F : 1.0F));
    for (int ray = 0; ray < 200; ++ray) {
      const glm::dvec3 target(inside(generator), inside(generator), inside(generator));
      const Line line = orthographic ? Line{target + 10.0 * eye, -eye} : Line{eye, target - eye};
      std::vector<double> hits;
      for (std::size_t i = 0; i < triangles.size(); i += 3) {
        if (const auto hit = meeting(line, triangles[i], triangles[i + 1], triangles[i + 2]))
          hits.push_back(hit->t);
      }
      EXPECT_TRUE(std::is_sorted(hits.begin(), hits.end(), std::greater<>())) << "scene " << scene;

      std::size_t expected = 0;  // slices that the ray passes
      for (int axis = 0; axis < 3; ++axis) {
        const Section& section = sections[static_cast<std::size_t>(axis)];
        const glm::dvec3 p =
            line.at((2.0 * section.position - 1.0 - line.origin[axis]) / line.direction[axis]);
        expected += section.shown && std::abs(p[(axis + 1) % 3]) < 1.0 && std::abs(p[(axis + 2) % 3]) < 1.0;
      }
      EXPECT_EQ(hits.size(), expected) << "scene " << scene;
    }
  }
}

}  // namespace
}  // namespace oct::test
