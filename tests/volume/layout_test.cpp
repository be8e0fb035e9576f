// Without OpenGL: the camera, the clip plane, the mesh of a surface, and scale marks with their steps and a layout that
// a person can read from every side. The rest shows in the pictures.
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <limits>
#include <random>
#include <set>
#include <vector>

#include <gtest/gtest.h>

#include "volume/layout/box_view.h"
#include "volume/layout/camera.h"
#include "volume/layout/clip_plane.h"
#include "volume/layout/scale_marks.h"
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
  EXPECT_TRUE(clip.border().empty());
  EXPECT_TRUE(clip.cut_face().empty());
}

TEST(ClipPlaneTest, FixedItKeepsItsOrientationButNotItsPlace) {
  ClipPlane clip;
  bool fixed = false;
  const auto normal_at = [&](bool enabled, float value, const View& view) {
    clip.update({enabled, false, fixed, value}, view, FilledBox());
    return glm::vec3(clip.plane());
  };
  normal_at(false, 0.5F, view_at(10, 20));
  expect_nothing_cut(clip);
  fixed = true;
  const glm::vec3 first = normal_at(true, 0.3F, view_at(10, 20));
  EXPECT_NEAR(glm::length(first), 1.0F, 1e-6F)
      << "fixed before its first frame it takes that one's orientation";
  EXPECT_EQ(normal_at(true, 0.5F, view_at(-60, 130)), first);
  EXPECT_EQ(normal_at(true, 0.75F, view_at(0, 0)), first);
  EXPECT_GT(clip.plane().w, 0.0F);
  normal_at(false, 0.75F, view_at(33, 44));
  expect_nothing_cut(clip);
  EXPECT_EQ(normal_at(true, 0.5F, view_at(33, 44)), first) << "a pause changes nothing";
  fixed = false;
  normal_at(true, 0.5F, view_at(0, 0));
  EXPECT_EQ(clip.plane(), glm::vec4(0, 0, -1, 0)) << "it faces the viewer again";
}

// Whatever the plane meets of the box, corners and edges too, its cut is one polygon, drawn once: every corner of
// it ends two segments.
TEST(FilledBoxTest, ACutIsOnePolygon) {
  std::vector<glm::vec4> planes{{0, 0, -1, 0},   {1, 1, 1, -1}, {1, 1, 1, 0},    {1, 0, -1, 0},
                                {1, -1, 0, 0},   {1, 1, 0, 1},  {1, 1, 1, 2.9F}, {1, 1, 1, 1},
                                {0, -1, 1, 0.5}, {2, 1, 1, 0},  {1, 0, 0, 0.99F}};
  std::mt19937 generator(3);
  std::uniform_real_distribution<float> any(-1.0F, 1.0F);
  for (int i = 0; i < 500; ++i)
    planes.emplace_back(any(generator), any(generator), any(generator), any(generator));
  for (const float end : {1.0F, 0.37F, -0.9F}) {
    const FilledBox box(end);
    for (const glm::vec4& plane : planes) {
      SCOPED_TRACE(testing::PrintToString(std::vector{plane.x, plane.y, plane.z, plane.w, end}));
      const PlaneCut cut = box.cut(plane);
      for (const glm::vec3& point : cut.border) {
        EXPECT_EQ(std::count(cut.border.begin(), cut.border.end(), point), 2);
        EXPECT_NEAR(glm::dot(plane, glm::vec4(point, 1.0F)), 0.0F, 1e-5F);
        EXPECT_TRUE(box.contains(point));
      }
      const std::size_t corners = cut.border.size() / 2;
      EXPECT_EQ(cut.face.size(), corners == 0 ? 0 : 6 * (corners - 2)) << "a fan in both windings";
    }
  }
  // A box of its own planes, one that only touches it, and one that is not filled have no cut.
  for (const auto& [plane, end] : {std::pair{glm::vec4(0, 0, 1, -0.37F), 0.37F},
                                   {{0, 0, 1, -0.5F}, 0.37F},
                                   {{1, 1, 1, -3}, 1.0F},
                                   {{1, 1, 0, -2}, 1.0F},
                                   {{0, 0, 1, 0}, -1.0F}})
    EXPECT_TRUE(FilledBox(end).cut(plane).border.empty());
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

TEST(TickStepTest, IsOneTwoOrFiveTimesAPowerOfTen) {
  struct Case {
    double value, step;
    int decimals;
    double minor;
  };
  for (const Case& c : {Case{0.001, 0.001, 3, 0.0002}, Case{0.0101, 0.02, 2, 0.005}, Case{0.1, 0.1, 1, 0.02},
                        Case{0.3, 0.5, 1, 0.1}, Case{0.5, 0.5, 1, 0.1}, Case{1.01, 2.0, 0, 0.5},
                        Case{2.0, 2.0, 0, 0.5}, Case{2.1, 5.0, 0, 1.0}, Case{5.1, 10.0, 0, 2.0}}) {
    TickStep step = TickStep::at_least(c.value);
    EXPECT_DOUBLE_EQ(step.value(), c.step) << c.value;
    EXPECT_EQ(step.decimals(), c.decimals) << c.value;
    EXPECT_DOUBLE_EQ(step.minor(), c.minor) << c.value;
    EXPECT_DOUBLE_EQ(step.next().value(), TickStep::at_least(1.01 * c.step).value()) << c.value;
  }
}

constexpr glm::vec3 extent{2.0F, 3.2F, 4.7F};  // depth, x, y

glm::ivec2 measured(const std::string& text, bool caption) {
  return {static_cast<int>(text.size()) * (caption ? 9 : 8), 16};
}

Camera camera_at(float angle_x, float angle_y, double zoom = 45.0, bool perspective = true,
                 Viewport viewport = {900, 700}) {
  View view;
  view.angle_x = angle_x;
  view.angle_y = angle_y;
  view.zoom = zoom;
  view.perspective = perspective;
  return camera_of(view, range_of(2.0, 3.2, 4.7), viewport);
}

ScaleMarks marks_of(const Camera& camera, const glm::vec3& size = extent) {
  return scale_marks(camera, size, MarkStyle::for_font(16), measured);
}

std::vector<Camera> all_sides() {
  std::vector<Camera> cameras;
  for (float x = -170.0F; x <= 170.0F; x += 37.0F) {
    for (float y = -175.0F; y <= 175.0F; y += 31.0F) {
      cameras.push_back(camera_at(x, y));
      cameras.push_back(camera_at(x, y, 40.0, false));
      cameras.push_back(camera_at(x, y, 45.0, true, {300, 260}));
    }
  }
  return cameras;
}

glm::vec2 window(const Camera& camera, const glm::vec3& device) {
  return (glm::vec2(device) + 1.0F) * 0.5F * glm::vec2(camera.viewport.width, camera.viewport.height);
}

// Whether the point lies in the picture of the box: inside the convex outline of its corners.
bool on_box(const Camera& camera, const glm::vec2& point) {
  std::vector<glm::vec2> corners;
  for (const float side : {-1.0F, 1.0F}) {
    for (const glm::vec3& corner : FilledBox().cross_section(0, side))
      corners.emplace_back(*on_screen(camera, corner));
  }
  for (double angle = 0.0; angle < 6.283; angle += 0.01) {
    const glm::vec2 direction(std::cos(angle), std::sin(angle));
    float reach = -1e9F;
    for (const glm::vec2& corner : corners) reach = std::max(reach, glm::dot(direction, corner));
    if (glm::dot(direction, point) > reach + 0.25F) return false;
  }
  return true;
}

int axis_of(const glm::vec3& anchor) {
  for (int axis = 0; axis < 3; ++axis) {
    if (std::abs(anchor[axis]) != 1.0F) return axis;
  }
  return -1;
}

glm::vec2 high_corner(const MarkLabel& label) {
  return label.position + glm::vec2(label.size);
}

bool overlap(const MarkLabel& a, const MarkLabel& b) {
  return glm::all(glm::lessThan(a.position, high_corner(b))) &&
         glm::all(glm::lessThan(b.position, high_corner(a)));
}

// Whether a number is that of its anchor. A corner of the box ends several axes; there the first or last
// number of one of them stands.
bool tells_its_place(const MarkLabel& label) {
  const glm::vec3 of_model(extent.y, extent.x, extent.z);
  const double value = std::atof(label.text.c_str());
  const int own = axis_of(label.anchor);
  for (int axis = 0; axis < 3; ++axis) {
    const double place = (static_cast<double>(label.anchor[axis]) + 1.0) / 2.0 * of_model[axis];
    if ((own < 0 || own == axis) && std::abs(place - value) < 1e-4 * of_model[axis]) return true;
  }
  return false;
}

TEST(ScaleMarksTest, LabelsReadWellFromAllSides) {
  for (const Camera& camera : all_sides()) {
    const auto labels = marks_of(camera).labels;
    EXPECT_GE(labels.size(), 2U);
    std::set<int> numbered;
    std::set<int> told;          // axes that tell their unit
    std::size_t at_corners = 0;  // units at a corner, which several axes share
    for (const MarkLabel& label : labels) {
      SCOPED_TRACE(label.text);
      const glm::vec2 high = high_corner(label);
      EXPECT_TRUE(label.position.x >= 0 && label.position.y >= 0 &&
                  high.x <= static_cast<float>(camera.viewport.width) &&
                  high.y <= static_cast<float>(camera.viewport.height));
      EXPECT_EQ(label.position, glm::round(label.position)) << "whole pixels";
      EXPECT_EQ(std::count_if(labels.begin(), labels.end(), [&](const auto& b) { return overlap(label, b); }),
                1)
          << "it overlaps itself only";

      const glm::vec2 middle = 0.5F * (label.position + high);
      const glm::vec2 anchor(*on_screen(camera, label.anchor));
      EXPECT_FALSE(on_box(camera, middle));
      EXPECT_NEAR(glm::length(anchor + label.offset - label.position), 0.0F, 0.01F);
      EXPECT_LT(glm::length(middle - anchor), label.caption ? 200.0F : 50.0F) << "beside its place";
      EXPECT_TRUE(label.caption || tells_its_place(label));

      const int axis = axis_of(label.anchor);
      const bool unit = label.text.find("mm") != std::string::npos;
      if (axis >= 0) (unit ? told : numbered).insert(axis);
      at_corners += axis < 0 && unit;
    }
    for (const int axis : told) numbered.erase(axis);
    const bool large = camera.viewport.width >= 400;  // a small one has no room for all units
    EXPECT_TRUE(!large || numbered.size() <= at_corners);
  }
}

TEST(ScaleMarksTest, TicksPointOutwardsAndKeepTheirSizeInPixels) {
  const MarkStyle style = MarkStyle::for_font(16);
  for (const double zoom : {30.0, 45.0, 90.0}) {
    const Camera camera = camera_at(25, -35, zoom);
    const auto ticks = marks_of(camera).ticks;
    EXPECT_GT(ticks.size(), 20U);
    int major = 0;
    for (std::size_t i = 0; i < ticks.size(); i += 2) {
      const glm::vec2 foot = window(camera, ticks[i]);
      const glm::vec2 tip = window(camera, ticks[i + 1]);
      const float length = glm::length(tip - foot);
      const bool is_major = std::abs(length - style.tick) < 0.02F;
      EXPECT_TRUE(is_major || std::abs(length - style.minor_tick) < 0.02F) << length;
      major += is_major;
      EXPECT_TRUE(on_box(camera, foot));
      EXPECT_FALSE(on_box(camera, tip));
      EXPECT_EQ(ticks[i].z, ticks[i + 1].z);
    }
    EXPECT_GE(major, 6);
  }
}

TEST(ScaleMarksTest, CaptionsAndStepsFollowTheRoom) {
  // The captions, and how many numbers stand along x.
  const auto expect_texts = [](const Camera& camera, const std::multiset<std::string>& captions, int numbers,
                               const glm::vec3& size = extent) {
    std::multiset<std::string> found;
    int along = 0;
    for (const MarkLabel& label : marks_of(camera, size).labels) {
      if (label.caption) found.insert(label.text);
      along += !label.caption && axis_of(label.anchor) == 0;
    }
    EXPECT_EQ(found, captions);
    EXPECT_EQ(along, numbers);
  };
  const std::multiset<std::string> all{"depth (mm)", "x (mm)", "y (mm)"};
  // 3.2 mm in at most six intervals are 1 mm each; from afar they are fewer.
  expect_texts(camera_at(20, 10), all, 3);
  expect_texts(camera_at(20, 10, 160.0), {"x (mm)"}, 1);
  expect_texts(camera_at(20, 10), all, 5, {2.0F, 0.12F, 4.7F});  // 0.02 mm apart, and one at either corner
  for (const bool perspective : {true, false})                   // an axis that is seen end on has no name
    expect_texts(camera_at(0, 0, 45.0, perspective), {"depth (mm)", "x (mm)"}, 3);
  // The box reaches nearly from rim to rim: no room for that of depth, whose last number tells the unit.
  const Camera narrow = camera_at(0, 0, 31.0, false, {160, 400});
  expect_texts(narrow, {"x (mm)"}, 3);
  const auto labels = marks_of(narrow).labels;
  EXPECT_TRUE(std::any_of(labels.begin(), labels.end(), [](const MarkLabel& label) {
    return axis_of(label.anchor) != 0 && !label.caption && label.text.find(" mm") != std::string::npos;
  }));

  int numbers = 0;  // of depth, which starts at the top left
  for (const MarkLabel& label : marks_of(camera_at(0, 0)).labels) {
    if (label.caption || axis_of(label.anchor) != 1) continue;
    EXPECT_EQ(label.anchor.x, -1.0F);
    ++numbers;
  }
  EXPECT_GE(numbers, 3);
}

TEST(ScaleMarksTest, NothingForARangeOrAViewWithoutExtent) {
  EXPECT_TRUE(marks_of(camera_at(20, 10), {0.0F, 0.0F, 0.0F}).labels.empty());
  const float nan = std::numeric_limits<float>::quiet_NaN();
  EXPECT_TRUE(marks_of(camera_at(20, 10), {nan, nan, nan}).ticks.empty());
  View inside;
  inside.translation = {0, 0, 5};  // the viewer stands in the middle of the box
  EXPECT_NO_THROW(marks_of(camera_of(inside, range_of(2.0, 3.2, 4.7), {900, 700})));
}

}  // namespace
}  // namespace oct::test
