// Gestures of the volume pane, against the matrices by which the library draws.
#include "octview/model/camera.h"

#include <algorithm>
#include <cmath>

#include <glm/glm.hpp>
#include <glm/gtc/matrix_transform.hpp>
#include <gtest/gtest.h>

namespace oct::app {
namespace {

constexpr PictureSize size{800, 500};
constexpr BoxExtent extent{2, 6, 4};

// Depth, A-scans, B-scans of the box to pixels from the upper left.
glm::dvec2 projected(const VolumeView& view, const BoxPoint& point) {
  glm::dmat4 matrix =
      glm::translate(glm::dmat4(1), {view.translation[0], view.translation[1], view.translation[2] - 5});
  matrix = glm::rotate(matrix, glm::radians(view.angles[0]), {1, 0, 0});
  matrix = glm::rotate(matrix, glm::radians(view.angles[1]), {0, 1, 0});
  matrix = glm::scale(matrix, glm::dvec3(extent[1], -extent[0], extent[2]) * (2 / std::sqrt(56.0)));
  const double aspect = static_cast<double>(size.width) / size.height;
  const double half = view.zoom / 10;
  const glm::dmat4 projection = view.perspective
                                    ? glm::perspective(glm::radians(view.zoom + 5), aspect, 0.1, 100.0)
                                    : glm::ortho(-half, half, -half / aspect, half / aspect, -100.0, 100.0);
  const glm::dvec4 clip =
      projection * matrix * glm::dvec4(2 * point[1] - 1, 2 * point[0] - 1, 2 * point[2] - 1, 1);
  return {(clip.x / clip.w + 1) / 2 * size.width, (1 - clip.y / clip.w) / 2 * size.height};
}

class Camera : public testing::TestWithParam<bool> {
 protected:
  Camera() {
    view_.perspective = GetParam();
    view_.angles = {30, -50};
    view_.translation = {0.3, -0.2, 0.4};
  }
  glm::dvec2 centre() const { return projected(view_, {0.5, 0.5, 0.5}); }

  VolumeView view_;
};

INSTANTIATE_TEST_SUITE_P(Projections, Camera, testing::Bool());

TEST_P(Camera, PointsAppearWhereTheyAreDrawn) {
  for (const BoxPoint& point : {BoxPoint{0, 0, 0}, BoxPoint{1, 0.3, 0.9}, BoxPoint{0.5, 1, 0}}) {
    const auto pixel = pixel_of(view_, extent, point, size);
    ASSERT_TRUE(pixel);
    EXPECT_NEAR((*pixel)[0], projected(view_, point).x, 1e-3);
    EXPECT_NEAR((*pixel)[1], projected(view_, point).y, 1e-3);
  }
  view_.translation[2] = 5;  // the viewer stands in the middle
  view_.angles = {};
  EXPECT_EQ(pixel_of(view_, extent, {0.5, 0.5, 1}, size).has_value(), !view_.perspective);
}

TEST_P(Camera, WhatIsPannedFollowsTheMouse) {
  const glm::dvec2 before = centre();
  pan(view_, {37, -91}, size);
  EXPECT_NEAR(centre().x - before.x, 37, 1e-6);
  EXPECT_NEAR(centre().y - before.y, -91, 1e-6);
}

TEST_P(Camera, ZoomsTowardsTheCursorAsFarAsThereAreFieldsOfView) {
  view_.angles = {};  // A-scans lie in the plane that is zoomed
  const PixelPoint cursor{centre().x, centre().y};
  const glm::dvec2 right = projected(view_, {0.5, 1, 0.5}) - centre();
  zoom_at(view_, cursor, 2, size);
  EXPECT_NEAR(centre().x, cursor[0], 1e-6);
  EXPECT_NEAR(centre().y, cursor[1], 1e-6);
  const glm::dvec2 smaller = projected(view_, {0.5, 1, 0.5}) - centre();
  EXPECT_NEAR(glm::length(right) / glm::length(smaller), 2, 1e-6);
  for (int i = 0; i < 40; ++i) zoom_at(view_, cursor, i < 20 ? 0.5 : 3.0, size);
  EXPECT_NEAR(view_.zoom, 170, 1e-9);
  EXPECT_NEAR(centre().x, cursor[0], 1e-6);
}

TEST_P(Camera, StaysUprightWhileItTurns) {
  view_ = {};
  view_.perspective = GetParam();
  turn(view_, {100, 50}, size);
  EXPECT_GT(projected(view_, {0.5, 0.5, 1}).x, centre().x);  // what is in front follows the hand
  EXPECT_GT(projected(view_, {0.5, 0.5, 1}).y, centre().y);
  EXPECT_NEAR(view_.angles[1], 22.5, 1e-9);
  turn(view_, {1000, 5000}, size);
  EXPECT_NEAR(view_.angles[0], 90, 1e-9);
  EXPECT_NEAR(view_.angles[1], 247.5 - 360, 1e-9);
  turn(view_, {0, -390}, size);
  EXPECT_LT(projected(view_, {0, 0.5, 0.5}).y, projected(view_, {1, 0.5, 0.5}).y);
}

TEST_P(Camera, TheBoxFillsThePictureThatItIsFittedTo) {
  for (const bool labels : {false, true}) {
    view_.scale_marks = labels;
    for (const double angle : {0.0, 70.0}) {
      view_.angles = {angle, angle - 35};
      fit_box(view_, extent, size);
      glm::dvec2 lowest(1e9), highest(-1e9);
      for (unsigned i = 0; i < 8; ++i) {
        const glm::dvec2 corner = projected(
            view_,
            {static_cast<double>(i & 1U), static_cast<double>(i >> 1U & 1U), static_cast<double>(i >> 2U)});
        lowest = glm::min(lowest, corner);
        highest = glm::max(highest, corner);
      }
      const glm::dvec2 part = (highest - lowest) / glm::dvec2(size.width, size.height);
      EXPECT_NEAR(std::max(part.x, part.y), labels ? 0.82 : 0.96, 1e-4) << angle;
      EXPECT_NEAR(lowest.x + highest.x, size.width, 2);
      EXPECT_NEAR(lowest.y + highest.y, size.height, 2);
    }
  }
}

TEST_P(Camera, AResetShowsTheWholeBoxHoweverItIsTurnedAndWhateverThePane) {
  for (const PictureSize pane : {PictureSize{400, 300}, PictureSize{300, 900}, PictureSize{900, 300}}) {
    reset_camera(view_, pane);
    for (double angle = -90; angle <= 90; angle += 15) {
      view_.angles = {angle, 2 * angle};
      for (const BoxPoint& corner : {BoxPoint{0, 0, 0}, BoxPoint{1, 1, 1}, BoxPoint{0, 1, 0}}) {
        const auto pixel = pixel_of(view_, extent, corner, pane);
        ASSERT_TRUE(pixel);
        EXPECT_LT(std::abs((*pixel)[0] / pane.width - 0.5), 0.47);
        EXPECT_LT(std::abs((*pixel)[1] / pane.height - 0.5), 0.47);
      }
    }
  }
}

}  // namespace
}  // namespace oct::app
