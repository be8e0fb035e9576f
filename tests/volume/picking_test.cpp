// What lies under a pixel, against the reference; and that asking changes nothing.
#include <algorithm>
#include <functional>
#include <random>

#include "random_scene.h"
#include "support/opengl/foreign_state.h"
#include "volume_test.h"

namespace oct::test {
namespace {

OctPick picked(VolumeRendererHandle renderer, int x, int y) {
  OctPick pick{};
  pick.size = sizeof pick;
  EXPECT_EQ(pickVolume(renderer, x, y, &pick), pick.kind);
  return pick;
}

// Where samples are equally bright any of them is right.
bool same(const VolumeScene& scene, const OctPick& found, const ReferencePick& expected) {
  const glm::dvec3 voxel(found.voxel[0], found.voxel[1], found.voxel[2]);
  if (found.kind != expected.kind) return expected.doubtful;
  if (found.kind == OCT_PICK_NOTHING) return true;
  const double apart = glm::length(voxel - expected.voxel);
  const double value = static_cast<double>(found.value);
  const bool brightest = found.kind == OCT_PICK_VOLUME && (scene.mode == 1 || scene.mode == 2);
  const bool near = apart <= 0.05;
  return (near && std::abs(value - expected.value) < 0.02) ||
         (brightest && std::abs(value - expected.value) < 0.004);
}

// The value is that of the place, and the place is told in millimetres as well.
void expect_consistent(const VolumeScene& scene, const OctPick& pick) {
  if (pick.kind == OCT_PICK_NOTHING) return;
  const glm::dvec3 voxel(pick.voxel[0], pick.voxel[1], pick.voxel[2]);
  const glm::dvec3 size(scene.volume.width, scene.volume.height, scene.volume.depth);
  for (int axis = 0; axis < 3; ++axis) {
    const double share = (voxel[axis] + 0.5) / size[axis];
    EXPECT_NEAR(pick.millimetres[axis],
                share * static_cast<double>(scene.range[static_cast<std::size_t>(axis)]), 1e-6);
    EXPECT_TRUE(share > -0.3 && share < 1.3) << share;
  }
  if (pick.kind == OCT_PICK_SURFACE) return;
  const double of_volume = reference_value(scene.content == 1 ? scene.overlay : scene.volume, voxel);
  const double of_overlay = scene.content == 2 ? reference_value(scene.overlay, voxel) : of_volume;
  const double value = static_cast<double>(pick.value);
  EXPECT_LT(std::min(std::abs(value - of_volume), std::abs(value - of_overlay)), 0.02);
}

TEST_F(VolumeTest, TellsWhatLiesUnderAPixel) {
  std::mt19937 random(5);
  std::vector<float> heights;
  for (int i = 0; i < 30; ++i) heights.push_back(2.0F + static_cast<float>(random() % 1000) / 250.0F);
  struct Kind {
    const char* name;
    std::function<void(VolumeScene&)> make;
    unsigned kinds;  // bit n: OctPickKind n is found
  };
  const auto surface = [&](VolumeScene& s) { s.surface = {5, 6, 9.0, heights}; };
  const Kind kinds[] = {
      {"composite", [](auto&) {}, 3},
      {"jitter and opacity length", [](auto& s) { s.jitter = true, s.opacity_length = 0.02, s.slices = 24; },
       3},
      {"maximum", [](auto& s) { s.mode = 1; }, 3},
      {"beyond the upper boundary", [](auto& s) { s.mode = 1, s.coloring.upper = 0.3; }, 3},
      {"mean", [](auto& s) { s.mode = 2; }, 3},
      {"dual coloring", [](auto& s) { s.mode = 3, s.secondary = test_volume(2, 12, 10); }, 3},
      {"transparent maximum", [](auto& s) { s.mode = 1, s.coloring.colors = ramp_colors(64, 0.0); }, 1},
      {"overlay",
       [](auto& s) {
         s.content = 2, s.overlay = test_volume(14, 12, 10, 9),
         s.overlay_coloring = {ramp_colors(9, 1.0), 0.1, 1.5};
       },
       3},
      {"overlay alone",
       [](auto& s) {
         s.content = 1, s.overlay = test_volume(14, 12, 10, 9), s.overlay_coloring = s.coloring;
       },
       3},
      {"orthographic", [](auto& s) { s.perspective = false, s.zoom = 25.0; }, 3},
      {"cut", [](auto& s) { s.clip = true, s.clip_value = 0.55F; }, 3},
      {"open cut", [](auto& s) { s.clip = s.clip_open = true, s.clip_value = 0.6F, s.mode = 1; }, 3},
      {"in part", [](auto& s) { s.slices_uploaded = 6; }, 3},
      {"from within",
       [](auto& s) {
         s.translation = {0.0, 0.0, 4.9}, s.zoom = 80.0;
       },
       2},
      {"surface", surface, 0xB},
      {"surface alone", [&](auto& s) { surface(s), s.volume_shown = false; }, 9},
      {"surface below a maximum", [&](auto& s) { surface(s), s.mode = 1; }, 0xA},
      {"surface, cut", [&](auto& s) { surface(s), s.clip = true, s.clip_value = 0.6F; }, 0xB},
      {"slices", [](auto& s) { s.sectional = true, s.sections[0].position = 0.3F; }, 5},
      {"slices and surface", [&](auto& s) { surface(s), s.sectional = true; }, 0xD},
      {"slices with overlay",
       [](auto& s) {
         s.sectional = true, s.content = 2, s.overlay = test_volume(14, 12, 10, 9), s.slices_uploaded = 7;
         s.overlay_coloring = {ramp_colors(9, 1.0), 0.1, 0.9};
       },
       5},
  };
  for (const Kind& kind : kinds) {
    SCOPED_TRACE(kind.name);
    VolumeScene scene = scene_;
    scene.mode = 0;
    scene.range = {0.7F, 1.0F, 0.8F};
    scene.coloring = {ramp_colors(64, 0.3), 0.1, 1.2};
    kind.make(scene);
    stage_.draw(scene);
    int wrong = 0;
    int all = 0;
    unsigned found = 0;
    for (int y = 3; y < scene.viewport_height; y += 5) {
      for (int x = 2; x < scene.viewport_width; x += 5, ++all) {
        const OctPick pick = picked(renderer_, x, y);
        const ReferencePick expected = reference_pick(scene, x, y);
        found |= 1U << static_cast<unsigned>(pick.kind);
        expect_consistent(scene, pick);
        if (same(scene, pick, expected)) continue;
        ++wrong;
        if (wrong > all / 50 + 2)
          ADD_FAILURE() << x << ", " << y << ": kind " << pick.kind << " for " << expected.kind << ", voxel "
                        << pick.voxel[0] << " " << pick.voxel[1] << " " << pick.voxel[2] << " for "
                        << expected.voxel.x << " " << expected.voxel.y << " " << expected.voxel.z
                        << ", value " << pick.value << " for " << expected.value;
      }
    }
    EXPECT_EQ(found & kind.kinds, kind.kinds);
    EXPECT_EQ(found & ~kind.kinds & ~1U, 0U) << found;
  }
  expect_no_error();
}

TEST_F(VolumeTest, AskingLeavesEverythingAsItIs) {
  scene_.surface = {2, 2, 1.0, {0.4F, 0.5F, 0.5F, 0.6F}};
  scene_.clip = scene_.scale_marks = scene_.edges = true;
  scene_.clip_value = 0.7F;
  const Picture expected = stage_.draw(scene_);
  expect_same_whatever_the_client_sets(stage_.target, expected, [&] {
    renderOfflineVolume(offline_, 0);
    EXPECT_NE(picked(renderer_, scene_.viewport_width / 2, scene_.viewport_height / 2).kind,
              OCT_PICK_NOTHING);
    EXPECT_EQ(explainFrame(renderer_, nullptr, 0), 0);
    renderOfflineVolume(offline_, 0);
  });
  expect_no_error();
}

TEST_F(VolumeTest, RefusesToPickWhereItCannotKnow) {
  OctPick pick{};
  pick.size = sizeof pick;
  OctPick small{};
  small.size = 4;
  const auto pick_it = [&] { EXPECT_EQ(pickVolume(renderer_, 40, 30, &pick), OCT_PICK_NOTHING); };
  expect_refused({{"Draw a frame before picking. ", pick_it},
                  {"The size of the pick must be set. ", [&] { pickVolume(renderer_, 1, 1, nullptr); }},
                  {"The size of the pick must be set. ", [&] { pickVolume(renderer_, 1, 1, &small); }}});
  stage_.draw(scene_);
  EXPECT_EQ(picked(renderer_, 40, 30).kind, OCT_PICK_VOLUME);
  setAngles(renderer_, 0.0, 90.0);
  clearVolumeRenderer(renderer_);  // counts from the next frame on
  small = picked(renderer_, 40, 30);
  pick.size = 2 * sizeof(unsigned);
  EXPECT_EQ(pickVolume(renderer_, 40, 30, &pick), OCT_PICK_VOLUME);
  EXPECT_EQ(pick.voxel[0], 0.0) << "beyond the size that was set";
  for (const auto& [x, y] : {std::pair{-1, 5}, {5, -1}, {80, 5}, {5, 60}})
    EXPECT_EQ(picked(renderer_, x, y).kind, OCT_PICK_NOTHING);
  const std::string changed = "The volume has changed since the last frame. Draw a frame before picking. ";
  const std::function<void()> changes[] = {
      [&] { uploadOfflineVolumeSlice(offline_, 9, scene_.volume.voxels.data()); },
      [&] { allocateOfflineVolume(offline_, 4, 4, 4); }};
  for (const auto& change : changes) {
    stage_.draw(scene_);
    change();
    expect_refused({{changed, pick_it}});
  }
  stage_.draw(scene_);
  OfflineRenderingHandle const other = createOfflineRendering();
  setOfflineRenderingRenderer(other, renderer_);
  upload(scene_, other);
  beginOffscreenFrame(stage_.target, 80, 60);
  renderOfflineVolume(other, 0);
  finishOffscreenFrame(stage_.target, nullptr);
  EXPECT_EQ(picked(renderer_, 40, 30).kind, OCT_PICK_VOLUME);
  clearOfflineRendering(other);
  expect_refused({{changed, pick_it}});
  frame();
  on_threads(1, [&](int) {
    expect_refused({{"No OpenGL context is current on the calling thread. ", pick_it}});
  });
  {
    const TestContext foreign;
    expect_refused({{"The renderer was initialised in another OpenGL context. ", pick_it}});
  }
}

}  // namespace
}  // namespace oct::test
