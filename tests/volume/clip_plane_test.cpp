// The clip plane's geometry, without OpenGL.
#include "volume/layout/clip_plane.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <glm/gtc/constants.hpp>
#include <random>

namespace oct::test {
namespace {

View viewAt(float angleX, float angleY) {
  View view;
  view.angleX = angleX;
  view.angleY = angleY;
  return view;
}

ClipPlane clipAt(const View& view, float value) {
  ClipPlane clip;
  clip.set(true, false, value);
  clip.update(view);
  return clip;
}

double distance(const glm::vec4& plane, const glm::vec3& point) {
  return glm::dot(glm::dvec4(plane), glm::dvec4(glm::dvec3(point), 1.0));
}

std::vector<View> someViews() {
  std::vector<View> views{viewAt(0, 0), viewAt(90, 0), viewAt(0, 45)};
  std::mt19937 generator(5);
  std::uniform_real_distribution<float> angle(-180.0F, 180.0F);
  for (int i = 0; i < 60; ++i) views.push_back(viewAt(angle(generator), angle(generator)));
  return views;
}

double area(const std::vector<glm::vec3>& triangles) {
  double sum = 0.0;
  for (std::size_t i = 0; i + 2 < triangles.size(); i += 3) {
    sum += 0.5 * glm::length(glm::cross(glm::dvec3(triangles[i + 1] - triangles[i]),
                                        glm::dvec3(triangles[i + 2] - triangles[i])));
  }
  return sum;
}

// Of the convex polygon with these corners, in whatever order they come.
double polygonArea(std::vector<glm::vec3> corners, const glm::vec3& normal) {
  glm::dvec3 centre(0.0);
  for (const glm::vec3& corner : corners) centre += glm::dvec3(corner) / static_cast<double>(corners.size());
  const glm::dvec3 n = glm::normalize(glm::dvec3(normal));
  const glm::dvec3 u = glm::normalize(glm::dvec3(corners[0]) - centre);
  const glm::dvec3 v = glm::cross(n, u);
  const auto angle = [&](const glm::vec3& corner) {
    const glm::dvec3 p = glm::dvec3(corner) - centre;
    return std::atan2(glm::dot(p, v), glm::dot(p, u));
  };
  std::sort(corners.begin(), corners.end(),
            [&](const auto& a, const auto& b) { return angle(a) < angle(b); });
  double sum = 0.0;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    const glm::dvec3 a = glm::dvec3(corners[i]) - centre;
    const glm::dvec3 b = glm::dvec3(corners[(i + 1) % corners.size()]) - centre;
    sum += 0.5 * glm::dot(n, glm::cross(a, b));
  }
  return sum;
}

TEST(ClipPlaneTest, FixedItKeepsItsOrientationButNotItsPlace) {
  ClipPlane clip = clipAt(viewAt(10, 20), 0.5F);
  const glm::vec3 first(clip.plane());
  clip.setFixed(true);
  clip.update(viewAt(-60, 130));
  EXPECT_EQ(glm::vec3(clip.plane()), first);
  clip.set(true, false, 0.75F);
  clip.update(viewAt(0, 0));
  EXPECT_EQ(glm::vec3(clip.plane()), first);
  EXPECT_GT(clip.plane().w, 0.0F);
  clip.set(false, false, 0.75F);
  clip.update(viewAt(33, 44));
  clip.set(true, false, 0.5F);
  clip.update(viewAt(33, 44));
  EXPECT_EQ(glm::vec3(clip.plane()), first) << "a pause changes nothing";
  clip.setFixed(false);
  clip.update(viewAt(0, 0));
  EXPECT_EQ(clip.plane(), glm::vec4(0, 0, -1, 0)) << "it faces the viewer again";
}

TEST(ClipPlaneTest, FixedBeforeItsFirstFrameItHasNoOrientationAndCutsNothing) {
  ClipPlane clip;
  clip.set(true, false, 0.3F);
  clip.setFixed(true);
  clip.update(viewAt(10, 20));
  EXPECT_EQ(clip.plane(), glm::vec4(0.0F));
  EXPECT_TRUE(clip.border().empty());
  EXPECT_TRUE(clip.cutFace().empty());
  clip.setFixed(false);
  clip.update(viewAt(0, 0));
  EXPECT_EQ(glm::vec3(clip.plane()), glm::vec3(0, 0, -1));
}

TEST(ClipPlaneTest, OffItIsZeroAndMeetsNothing) {
  ClipPlane clip;
  clip.update(viewAt(10, 20));
  EXPECT_EQ(clip.plane(), glm::vec4(0.0F));
  clip.set(true, true, 0.5F);
  clip.update(viewAt(10, 20));
  EXPECT_TRUE(clip.open_cut());
  EXPECT_FALSE(clip.cutFace().empty());
  clip.set(false, true, 0.5F);
  clip.update(viewAt(10, 20));
  EXPECT_EQ(clip.plane(), glm::vec4(0.0F));
  EXPECT_TRUE(clip.intersections().empty());
  EXPECT_TRUE(clip.border().empty());
  EXPECT_TRUE(clip.cutFace().empty());
}

TEST(BoxIntersectionsTest, AreOrderedByEdge) {
  const std::vector<glm::vec3> alongZ = boxIntersections({0.0F, 0.0F, -1.0F, 0.25F});
  const std::vector<glm::vec3> expected{{1, 1, 0.25F}, {1, -1, 0.25F}, {-1, -1, 0.25F}, {-1, 1, 0.25F}};
  EXPECT_EQ(alongZ, expected);
  // x + y + z = 0 cuts six edges in their middles, two of each direction.
  const std::vector<glm::vec3> hexagon = boxIntersections({1, 1, 1, 0});
  const std::vector<glm::vec3> corners{{0, -1, 1}, {0, 1, -1}, {-1, 0, 1},
                                       {1, 0, -1}, {1, -1, 0}, {-1, 1, 0}};
  EXPECT_EQ(hexagon, corners);
  const std::vector<glm::vec3> alongX = boxIntersections({2, 0, 0, 1});
  ASSERT_EQ(alongX.size(), 4U);
  EXPECT_EQ(alongX[0], glm::vec3(-0.5F, 1, 1));
  EXPECT_EQ(alongX[1], glm::vec3(-0.5F, -1, 1));
}

TEST(BoxIntersectionsTest, NoneForAPlaneThatIsNone) {
  EXPECT_TRUE(boxIntersections({0, 0, 0, 0}).empty());
  EXPECT_TRUE(boxIntersections({0, 0, 0, 1}).empty());
  EXPECT_TRUE(boxIntersections({1, 1, 1, 3.5F}).empty());
}

TEST(ClipPlaneTest, EveryEdgeThatChangesSidesHasAPoint) {
  for (const View& view : someViews()) {
    const ClipPlane clip = clipAt(view, 0.37F);
    std::size_t crossed = 0;
    for (int a = 0; a < 8; ++a) {
      for (const int bit : {1, 2, 4}) {
        const auto corner = [](int i) { return glm::vec3(i & 1 ? 1 : -1, i & 2 ? 1 : -1, i & 4 ? 1 : -1); };
        if ((a & bit) != 0) continue;
        crossed +=
            (distance(clip.plane(), corner(a)) < 0.0) != (distance(clip.plane(), corner(a | bit)) < 0.0);
      }
    }
    EXPECT_EQ(clip.intersections().size(), crossed);
    for (const glm::vec3& point : clip.intersections()) {
      EXPECT_NEAR(distance(clip.plane(), point), 0.0, 1e-5);
      int onFaces = 0;
      for (int axis = 0; axis < 3; ++axis) onFaces += std::abs(point[axis]) == 1.0F;
      EXPECT_GE(onFaces, 2);
    }
  }
}

TEST(ClipPlaneTest, BorderAndCutFaceCoverThePolygon) {
  for (const View& view : someViews()) {
    for (const float value : {0.08F, 0.3F, 0.5F, 0.85F}) {
      const ClipPlane clip = clipAt(view, value);
      const auto& corners = clip.intersections();
      const double expected = polygonArea(corners, glm::vec3(clip.plane()));
      ASSERT_GE(corners.size(), 3U);
      // Every side of the polygon comes in both directions, every triangle in both windings. Where the plane
      // runs through corners of the box, sides come more often, but never a triangle.
      EXPECT_GE(clip.border().size(), 2 * 2 * corners.size());
      EXPECT_NEAR(area(clip.cutFace()), 2.0 * expected, 1e-4 * expected)
          << view.angleX << ", " << view.angleY;
      glm::dvec3 oriented(0.0);
      for (std::size_t i = 0; i < clip.cutFace().size(); i += 3) {
        oriented += glm::cross(glm::dvec3(clip.cutFace()[i + 1] - clip.cutFace()[i]),
                               glm::dvec3(clip.cutFace()[i + 2] - clip.cutFace()[i]));
      }
      EXPECT_NEAR(glm::length(oriented), 0.0, 1e-5) << "as many triangles look one way as the other";
    }
  }
}

TEST(RemovedFacesTest, CoverTheCutOffPartOfTheBox) {
  constexpr int n = 200;  // samples along an edge
  for (const View& view : someViews()) {
    const glm::vec4 plane = clipAt(view, 0.6F).plane();
    const std::vector<glm::vec3> triangles = removedFaces(plane);
    for (const glm::vec3& point : triangles) {
      EXPECT_LT(distance(plane, point), 1e-5);
      EXPECT_EQ(std::max({std::abs(point.x), std::abs(point.y), std::abs(point.z)}), 1.0F);
    }
    double removed = 0.0;
    for (int axis = 0; axis < 3; ++axis) {
      for (const float side : {-1.0F, 1.0F}) {
        for (int i = 0; i < n * n; ++i) {
          glm::vec3 point;
          point[axis] = side;
          point[(axis + 1) % 3] = (2.0F * static_cast<float>(i % n) + 1.0F) / n - 1.0F;
          point[(axis + 2) % 3] = (2.0F * static_cast<float>(i / n) + 1.0F) / n - 1.0F;
          removed += (distance(plane, point) < 0.0) * 4.0 / (n * n);
        }
      }
    }
    EXPECT_NEAR(area(triangles), removed, 0.05);
  }
  EXPECT_TRUE(removedFaces({0, 0, -1, 2}).empty());
  EXPECT_NEAR(area(removedFaces({0, 0, -1, -2})), 24.0, 1e-5);
}

}  // namespace
}  // namespace oct::test
