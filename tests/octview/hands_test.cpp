// Mouse and keys in a pane of sections, frame by frame, without a window.
#include <cmath>
#include <limits>

#include <gtest/gtest.h>
#include <imgui.h>

#include "octview/model/slice_position.h"
#include "octview/views/slice_hands.h"
#include "octview/window/keys.h"

namespace oct::app::test {
namespace {

constexpr float width = 400, height = 300;

class Hands : public testing::TestWithParam<SliceAxis> {
 protected:
  Hands() : axis_(GetParam()), hands_(axis_) {
    ImGui::CreateContext();
    ImGuiIO& io = ImGui::GetIO();
    io.DisplaySize = {width, height};
    io.DeltaTime = 1.0F / 60;
    io.IniFilename = nullptr;
    io.Fonts->AddFontDefault();
    io.Fonts->Build();
    VolumeData volume{30, 40, 50, std::vector<float>(60'000), {}};
    volume.file_size = {30, 40, 50};
    workspace_.document.volume = std::make_shared<const VolumeData>(std::move(volume));
    LateralMap surface{40, 50, std::vector<float>(2000, 7)};
    surface.values[0] = std::numeric_limits<float>::quiet_NaN();
    workspace_.document.surface = std::make_shared<const LateralMap>(std::move(surface));
    state().cursor = {15, 20, 25};
    move({200, 150});
  }
  ~Hands() override { ImGui::DestroyContext(); }

  ViewState& state() { return workspace_.state; }
  SliceWindow& window() { return state().windows[static_cast<std::size_t>(axis_)]; }

  SliceGeometry geometry() {
    const Image slice = slice_of(*workspace_.document.volume, axis_, 0);
    return {axis_, area_of(window(), slice, {400, 300}), {0, 0}, {width, height}};
  }
  VoxelPoint voxel_at(const ScreenPoint& point) {
    const SlicePosition place = slice_position(workspace_.document, state(), axis_);
    return geometry().voxel_at(point, static_cast<double>(place.position));
  }

  void frame() {
    ImGui::NewFrame();
    ImGui::SetNextWindowPos({0, 0});
    ImGui::SetNextWindowSize({width, height});
    ImGui::PushStyleVar(ImGuiStyleVar_WindowPadding, {0, 0});
    ImGui::Begin("all", nullptr, ImGuiWindowFlags_NoDecoration | ImGuiWindowFlags_NoMove);
    ImGui::InvisibleButton("picture", {width, height},
                           ImGuiButtonFlags_MouseButtonLeft | ImGuiButtonFlags_MouseButtonRight |
                               ImGuiButtonFlags_MouseButtonMiddle);
    const Image slice = slice_of(*workspace_.document.volume, axis_, 0);
    hands_.handle(workspace_, geometry(), {slice.depth, slice.ascans});
    ImGui::End();
    ImGui::PopStyleVar();
    ImGui::EndFrame();
    ImGui::GetIO().MouseWheel = 0;
  }

  void move(const ScreenPoint& to) {
    ImGui::GetIO().MousePos = {static_cast<float>(to[0]), static_cast<float>(to[1])};
    frame();
    frame();
  }
  void button(int number, bool down) {
    ImGui::GetIO().MouseDown[number] = down;
    frame();
  }
  void click(const ScreenPoint& at) {
    move(at);
    for (int i = 0; i < 30; ++i) frame();  // no double click
    button(0, true);
    button(0, false);
  }
  void drag(const ScreenPoint& from, const ScreenPoint& to, int number = 0) {
    move(from);
    for (int i = 0; i < 30; ++i) frame();
    button(number, true);
    move({(from[0] + to[0]) / 2, (from[1] + to[1]) / 2});
    move(to);
    button(number, false);
  }
  void press(Key key) {
    for (const bool down : {true, false}) {
      ImGui::GetIO().KeysDown[static_cast<int>(key)] = down;
      frame();
    }
  }

  void expect_near(const VoxelPoint& actual, const VoxelPoint& wanted) {
    for (std::size_t i = 0; i < 3; ++i) EXPECT_NEAR(actual[i], wanted[i], 1e-4) << i;
  }

  const SliceAxis axis_;
  Workspace workspace_;
  SliceHands hands_;
};

TEST_P(Hands, ZoomTowardsTheCursorAndPullTheSectionAlong) {
  const ScreenPoint mouse{260, 90};
  move(mouse);
  const VoxelPoint before = voxel_at(mouse);
  for (const float notches : {3.0F, -1.0F}) {
    ImGui::GetIO().MouseWheel = notches;
    frame();
  }
  EXPECT_NEAR(window().zoom, std::pow(1.15, 2), 1e-9);
  expect_near(voxel_at(mouse), before);
  drag(mouse, {300, 200}, 1);
  EXPECT_LT(window().zoom, 1.0);
  expect_near(voxel_at(mouse), before);
  drag(mouse, {250, 80});
  expect_near(voxel_at({250, 80}), before);
  drag({250, 80}, {200, 100}, 2);
  expect_near(voxel_at({200, 100}), before);
  press(letter('F'));
  EXPECT_EQ(window(), SliceWindow());
  EXPECT_EQ(state().cursor, (VoxelPoint{15, 20, 25}));
  for (int i = 0; i < 200; ++i) {
    ImGui::GetIO().MouseWheel = 10;
    frame();
  }
  EXPECT_LE(window().zoom, 1e6);  // what commands and sessions take
  drag({10, 10}, {390, 290});
  EXPECT_LE(std::abs(window().centre[0]), 2);
}

TEST_P(Hands, ShiftMovesTheCrosshairAndKeysStepSections) {
  const SliceAxes axes = axes_of(axis_);
  ImGui::GetIO().KeyShift = true;
  move({120, 100});
  VoxelPoint wanted = voxel_at({120.5, 100.5});
  const std::array<double, 3> last{29, 39, 49};
  for (std::size_t i = 0; i < 3; ++i) wanted[i] = std::clamp(std::round(wanted[i]), 0.0, last[i]);
  EXPECT_EQ(state().cursor, wanted);
  move({-5, 100});  // beside the pane
  EXPECT_EQ(state().cursor, wanted);
  ImGui::GetIO().KeyShift = false;
  move({130, 100});
  EXPECT_EQ(state().cursor, wanted);
  double& across = state().cursor[axes.across];
  across = 12;
  press(Key::right);
  press(Key::down);
  press(Key::page_down);
  press(Key::left);
  EXPECT_EQ(across, 23);
  for (int i = 0; i < 5; ++i) press(Key::page_down);
  EXPECT_EQ(across, last[axes.across]);
  for (int i = 0; i < 6; ++i) press(Key::page_up);
  EXPECT_EQ(across, 0);
  press(letter('R'));
  EXPECT_EQ(state().cursor, (VoxelPoint{15, 20, 25}));
}

TEST_P(Hands, DoubleClicksMakeThePaneLargeAndSmallAgain) {
  for (const bool large : {true, false}) {
    click({200, 150});
    button(0, true);
    EXPECT_EQ(state().large, large ? std::optional(static_cast<Pane>(axis_)) : std::nullopt);
    button(0, false);
  }
}

TEST_P(Hands, ClicksMeasureAndPointsCanBeDraggedAndRemoved) {
  workspace_.tool = MeasurementKind::angle;
  const SliceWindow before = window();
  const ScreenPoint places[] = {{150, 60}, {200, 150}, {260, 120}};
  const VoxelPoint wanted[] = {voxel_at(places[0]), voxel_at(places[1]), voxel_at(places[2])};
  click(places[0]);
  press(Key::escape);
  EXPECT_FALSE(workspace_.tool);
  EXPECT_TRUE(workspace_.clicked.empty());
  workspace_.tool = MeasurementKind::angle;
  click(places[0]);
  drag(places[1], {210, 160});  // the point is where the button went down, and the section stays
  EXPECT_EQ(window(), before);
  click(places[2]);
  ASSERT_EQ(state().measurements.size(), 1U);
  EXPECT_FALSE(workspace_.tool);
  for (std::size_t i = 0; i < 3; ++i) expect_near(state().measurements[0].points[i], wanted[i]);
  drag({151, 61}, {171, 81});
  EXPECT_EQ(window(), before);
  expect_near(state().measurements[0].points[0], voxel_at({171, 81}));
  expect_near(state().measurements[0].points[2], wanted[2]);
  // In another section they are not there.
  state().cursor[axes_of(axis_).across] += 3;
  move(places[2]);
  press(Key::del);
  ASSERT_EQ(state().measurements.size(), 1U);
  state().cursor[axes_of(axis_).across] -= 3;
  press(Key::del);
  EXPECT_TRUE(state().measurements.empty());
}

INSTANTIATE_TEST_SUITE_P(Sections, Hands,
                         testing::Values(SliceAxis::bscan, SliceAxis::enface, SliceAxis::third));

// En-face sections that follow a surface.
class HandsOnASurface : public Hands {};

TEST_P(HandsOnASurface, CountFromItAndFindItsDepth) {
  state().enface.along_surface = true;
  press(Key::page_down);
  press(Key::up);
  EXPECT_EQ(state().below_surface, 9);
  EXPECT_EQ(state().cursor, (VoxelPoint{16, 20, 25}));
  ImGui::GetIO().KeyShift = true;
  move({150, 150});
  EXPECT_EQ(state().cursor[0], 16);
  state().cursor[0] = 3;
  const SliceGeometry now = geometry();
  move(now.screen_of({0, 0, 0}));  // no depth there
  EXPECT_EQ(state().cursor, (VoxelPoint{3, 0, 0}));
  ImGui::GetIO().KeyShift = false;
  workspace_.tool = MeasurementKind::distance;
  click(now.screen_of({0, 0, 0}));
  EXPECT_TRUE(workspace_.clicked.empty());
  EXPECT_EQ(workspace_.message, "The surface has no depth here");
  click({200, 100});
  ASSERT_EQ(workspace_.clicked.size(), 1U);
  EXPECT_EQ(workspace_.clicked[0][0], 16);
}

INSTANTIATE_TEST_SUITE_P(Sections, HandsOnASurface, testing::Values(SliceAxis::enface));

}  // namespace
}  // namespace oct::app::test
