// What a device delivers is what the picture shows: against a ray caster on the CPU.
#include <array>

#include "live/live_test.h"
#include "support/reference/volume_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

struct Case {
  std::string name;
  int kept = 20;
  double refractive_index = 1.0;
  int mode = 0;
  bool analog = false;
};

// The first samples of every A-scan.
Volume cropped(const Volume& whole, int kept) {
  Volume volume{kept, whole.height, whole.depth, {}};
  for (std::size_t start = 0; start < whole.voxels.size(); start += static_cast<std::size_t>(whole.width)) {
    const auto first = whole.voxels.begin() + static_cast<std::ptrdiff_t>(start);
    volume.voxels.insert(volume.voxels.end(), first, first + kept);
  }
  return volume;
}

class LivePicturesTest : public LiveTest, public testing::WithParamInterface<Case> {};

TEST_P(LivePicturesTest, EqualTheArithmetic) {
  const Case& wanted = GetParam();
  const Volume whole = test_volume(20, 14, 12);
  VolumeScene scene;
  scene.volume = cropped(whole, wanted.kept);
  scene.border = true;
  scene.mode = wanted.mode;
  scene.coloring = {ramp_colors(256, 0.3), 0.2, 1.0};
  scene.angle_x = 25.0;
  scene.angle_y = -35.0;
  scene.range = {static_cast<float>(2.0 * wanted.kept / 20 / wanted.refractive_index), 3.0F, 1.5F};
  device_.set_size(20, 14, 12);
  device_.set_volume(whole.voxels.data());
  make_source();
  setSizeZ(source_, wanted.kept);
  setOnlineRefractiveIndex(source_, wanted.refractive_index);
  if (wanted.analog) {
    scene.secondary = test_volume(3, 14, 12, 9);
    scene.secondary_coloring = {opaque_colors(32), 0.0, 1.0};
    scene.secondary_index = 1;
    device_.set_analog(3, scene.secondary.voxels.data());
    setOnlineAnalogInputConfiguration(source_, true);
  }
  apply(scene, renderer_);
  start();
  ASSERT_TRUE(frames_until_shown());
  // A few volumes more: both buffers, and the range of the loop.
  const int before = device_.volumes();
  ASSERT_TRUE(frames_until([&] { return device_.volumes() > before + 4; }));
  const Picture picture = frame(scene.viewport_width, scene.viewport_height);
  EXPECT_TRUE(agree(picture, reference_picture(scene), {1, 0.995, 140, 0.12}));
  EXPECT_EQ(voxels_, scene.volume.voxels);
  int size[3] = {};
  getLiveVolumeRenderingSize(live_, &size[0], nullptr, &size[2]);
  getLiveVolumeRenderingSize(live_, nullptr, &size[1], nullptr);
  EXPECT_EQ(std::to_array(size), (std::array{wanted.kept, 14, 12}));
}

INSTANTIATE_TEST_SUITE_P(Live, LivePicturesTest,
                         testing::Values(Case{"Whole"}, Case{"Cropped", 9}, Case{"Refracted", 20, 1.34},
                                         Case{"CroppedAndRefracted", 13, 1.5}, Case{"Maximum", 20, 1.0, 1},
                                         Case{"Mean", 11, 1.0, 2}, Case{"DualColoring", 20, 1.0, 3, true},
                                         Case{"CroppedDualColoring", 10, 1.0, 3, true}),
                         [](const auto& entry) { return entry.param.name; });

// The surface lies where setSurface would put it.
class LiveSurfaceTest : public LiveTest {};

TEST_F(LiveSurfaceTest, LiesWhereItShall) {
  std::vector<float> depths;
  for (int i = 0; i < 12 * 10; ++i) depths.push_back(0.1F + 0.005F * static_cast<float>(i % 12 + i / 12));
  const auto prepare = [](VolumeRendererHandle renderer) {
    VolumeScene scene;
    scene.angle_x = 60.0;
    apply(scene, renderer);
    setRenderElements(renderer, 0, 1);
  };
  device_.set_surface(depths.data());
  make_source();
  setSizeZ(source_, 8);
  setOnlineRefractiveIndex(source_, 1.25);
  prepare(renderer_);
  start();
  ASSERT_TRUE(frames_until([&] { return device_.volumes() > 3; }));
  const Picture picture = frame(80, 60);

  VolumeStage still;
  setOfflineAspectRatio(still.offline, 0.8F, 3.0F, 1.5F);
  prepare(still.renderer);
  setSurface(still.renderer, 12, 10, 0.8, depths.data());
  still.frame(80, 60, 0);
  prepare(still.renderer);
  EXPECT_TRUE(agree(picture, still.frame(80, 60, 0), {0, 1.0, 0}));
  std::fill(depths.begin(), depths.end(), 0.7F);
  setSurface(still.renderer, 12, 10, 0.8, depths.data());
  EXPECT_FALSE(agree(picture, still.frame(80, 60, 0), {40, 0.98, 255})) << "nothing of the surface is seen";
}

}  // namespace
}  // namespace oct::test
