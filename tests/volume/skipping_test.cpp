// What rays jump over changes no pixel: frames with and without the tables of empty space.
#include <algorithm>
#include <limits>
#include <numeric>
#include <random>

#include "gl/context/client_state.h"
#include "gl/texture_3d.h"
#include "volume/skipping/empty_space.h"
#include "volume_test.h"

namespace oct::test {
namespace {

class Choice {
 public:
  explicit Choice(unsigned seed) : random_(seed) {}
  int below(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }
  bool one_of(int count) { return below(count) == 0; }
  double between(double low, double high) {
    return std::uniform_real_distribution<double>(low, high)(random_);
  }
  template <class Value>
  Value of(std::initializer_list<Value> values) {
    return *(values.begin() + below(static_cast<int>(values.size())));
  }

 private:
  std::mt19937 random_;
};

// A few balls of noise and single voxels in a void, or in what 16 bits round to above a boundary of 0.3.
Volume sparse_volume(int width, int height, int depth, Choice& choice) {
  Volume volume = test_volume(width, height, depth, static_cast<unsigned>(choice.below(1000)));
  struct Ball {
    double u, v, w, radius;
  };
  std::vector<Ball> balls;
  for (int i = choice.below(4); i >= 0; --i) {
    balls.push_back({choice.between(0, width), choice.between(0, height), choice.between(0, depth),
                     choice.between(0.5, 9.0)});
  }
  const float background = choice.of({0.0F, 0.1F, -2.0F, 0.29999F});
  const float noise = background < 0.2F ? 0.05F : 0.0F;
  const int specks = choice.of({0, 0, 40, 400});
  std::size_t i = 0;
  for (int w = 0; w < depth; ++w) {
    for (int v = 0; v < height; ++v) {
      for (int u = 0; u < width; ++u, ++i) {
        const bool inside = std::ranges::any_of(balls, [&](const Ball& ball) {
          return std::hypot(u - ball.u, v - ball.v, w - ball.w) < ball.radius;
        });
        if (!inside) volume.voxels[i] = background + noise * volume.voxels[i];
        if (specks > 0 && choice.one_of(specks)) volume.voxels[i] = 1.0F;
      }
    }
  }
  if (choice.one_of(4)) {
    for (int k = choice.below(6); k >= 0; --k) {
      volume.voxels[static_cast<std::size_t>(choice.below(static_cast<int>(i)))] =
          choice.of({std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity(),
                     -std::numeric_limits<float>::infinity(), 1e30F, 65510.0F, 1.0F});
    }
  }
  return volume;
}

Coloring random_coloring(Choice& choice) {
  Coloring coloring;
  coloring.colors =
      choice.of({opaque_colors(64), ramp_colors(256, 0.12), ramp_colors(300, 1.0), opaque_colors(1)});
  const std::size_t count = coloring.colors.size();
  const std::size_t clear =
      choice.of({std::size_t{0}, std::size_t{1}, count / 3, count});  // entries without opacity
  for (std::size_t i = 0; i < clear && choice.one_of(2); ++i) coloring.colors[i] &= 0x00FFFFFFU;
  coloring.lower = choice.of({0.15, 0.3, 0.0, -1.0});
  coloring.upper = coloring.lower + choice.between(0.05, 1.0);
  if (choice.one_of(12)) std::swap(coloring.lower, coloring.upper);
  if (choice.one_of(12)) coloring.upper = coloring.lower;
  if (choice.one_of(12)) coloring.upper = std::numeric_limits<double>::infinity();
  return coloring;
}

VolumeScene random_scene(Choice& choice) {
  const auto size = [&] { return choice.of({1, 2, 5, 9, 16, 17, 31, 40}); };
  const int width = size();
  const int height = size();
  const int depth = size();
  VolumeScene scene = scene_of(sparse_volume(width, height, depth, choice), 72, 56, choice.between(-90, 90),
                               choice.between(-180, 180));
  if (choice.one_of(6)) scene.angle_x = 90.0 * choice.below(3), scene.angle_y = 90.0 * choice.below(4);
  scene.mode = choice.of({0, 0, 1, 1, 3});
  if (scene.mode == 3) scene.secondary = test_volume(2, height, depth);
  if (choice.one_of(3)) scene.overlay = sparse_volume(width, height, depth, choice), scene.content = 2;
  scene.slices = choice.of({1, 3, 17, 64, 128, 300});
  if (choice.one_of(3)) scene.lighting = {0.3, 0.7, 0.4};
  if (choice.one_of(3)) scene.opacity_length = 0.05;
  scene.jitter = choice.one_of(3);
  scene.coloring = random_coloring(choice);
  scene.overlay_coloring = random_coloring(choice);
  scene.perspective = choice.one_of(2);
  scene.zoom = choice.of({40.0, 40.0, 90.0});
  if (choice.one_of(6)) scene.translation = {0.0, 0.0, 1.4};  // the viewer is in the box, or nearly
  scene.range = {static_cast<float>(choice.between(0.3, 1.0)), 1.0F,
                 static_cast<float>(choice.between(0.3, 1.0))};
  if (choice.one_of(3)) scene.clip = true, scene.clip_value = static_cast<float>(choice.between(0.2, 0.8));
  scene.clip_open = choice.one_of(2);
  if (choice.one_of(4)) scene.slices_uploaded = 1 + choice.below(depth);
  if (choice.one_of(4)) scene.surface = {4, 4, 1.0, std::vector<float>(16, 0.6F)};
  return scene;
}

// The scene's volume as live volumes have it, and what is made of it.
struct LiveFormat {
  explicit LiveFormat(const Volume& volume)
      : maxima({volume.width, volume.height, volume.depth}, 8, BrickTexture::border) {
    texture.allocate(maxima.extent(), GL_R32F, "test");
    const auto binding = texture.bind();
    for (const GLenum wrap : {GL_TEXTURE_WRAP_S, GL_TEXTURE_WRAP_T, GL_TEXTURE_WRAP_R})
      glTexParameteri(GL_TEXTURE_3D, wrap, GL_CLAMP_TO_BORDER);
    texture.upload_b_scans(0, volume.depth, volume.voxels.data(), "test");
    for (int w = 0; w < volume.depth; ++w)
      maxima.take_b_scan(
          w, {volume.voxels.data() + static_cast<std::size_t>(w) * volume.slice_voxels(), volume.width});
  }

  gl::Texture3D texture;
  BrickMaxima maxima;
  EmptySpace empty_space;
};

class SkippingTest : public VolumeTest {
 protected:
  Picture picture_of(const VolumeSource& source) {
    Picture picture(scene_.viewport_width, scene_.viewport_height);
    beginOffscreenFrame(stage_.target, static_cast<unsigned>(picture.width),
                        static_cast<unsigned>(picture.height));
    {
      const gl::ClientState state(gl::ClientState::Use::drawing);
      reinterpret_cast<VolumeRenderer*>(renderer_)->render(source);
    }
    finishOffscreenFrame(stage_.target, picture.bytes.data());
    return picture;
  }

  // Whether anything was skipped.
  bool expect_same(VolumeSource source) {
    const Picture skipping = picture_of(source);
    source.empty_space = nullptr;
    EXPECT_TRUE(agree(skipping, picture_of(source), exact));
    return !agree(skipping, background_picture(scene_), exact);
  }
};

TEST_F(SkippingTest, ChangesNoPixel) {
  int seen = 0;
  for (unsigned seed = 0; seed < 66; ++seed) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    Choice choice(seed);
    scene_ = random_scene(choice);
    if (seed % 6 == 1) scene_.coloring = {opaque_colors(64), 0.3, 0.9};
    if (seed % 6 == 0) {  // the zeros beyond a rim show, and nothing else
      for (float& voxel : scene_.volume.voxels) voxel -= 4.0F;
      scene_.coloring = {opaque_colors(64), -1.0, 0.9};
    }
    stage_.prepare(scene_);
    beginOffscreenFrame(stage_.target, 8, 8);
    VolumeSource shown = source(static_cast<OfflineVolumeRendering::Content>(scene_.content));
    if (seed % 3 != 0) {
      seen += expect_same(shown);
      scene_.angle_y += 100.0;  // other octants, and other limits of the same volume
      scene_.coloring = random_coloring(choice);
      apply(scene_, renderer_);
      expect_same(shown);
    } else if (scene_.content == 0) {
      LiveFormat live(scene_.volume);
      shown.volume = live.texture.get();
      shown.volume_revisions = &live.texture.revisions();
      shown.volume_maxima = &live.maxima;
      shown.empty_space = &live.empty_space;
      seen += expect_same(shown);
    }
  }
  EXPECT_GT(seen, 30) << "of the volumes";
}

// Blocks and slices in any order, some twice, one of which OpenGL refuses, and a volume of the same size after it.
TEST_F(SkippingTest, FollowsEveryUpload) {
  Choice choice(7);
  for (int volume = 0; volume < 3; ++volume) {
    scene_ = random_scene(choice);
    scene_.volume = sparse_volume(33, 14, 21, choice);
    scene_.slices_uploaded = -1;
    scene_.coloring = {ramp_colors(256, 0.5), 0.2, 0.9};
    scene_.clip = false;
    stage_.prepare(scene_);
    for (int step = 0; step < 12; ++step) {
      const Volume other = sparse_volume(33, 14, 21, choice);
      const auto from = [&](int b_scan) {
        return other.voxels.data() + static_cast<std::size_t>(b_scan) * other.slice_voxels();
      };
      const int first = choice.below(21);
      beginOffscreenFrame(stage_.target, 8, 8);
      if (choice.one_of(2)) {
        uploadOfflineVolumeSlice(offline_, first, from(first));
      } else {
        uploadOfflineSubVolume(offline_, first, first + choice.below(21 - first) + 1, from(first));
      }
      VolumeSource shown = source(static_cast<OfflineVolumeRendering::Content>(scene_.content));
      shown.filled_fraction = 1.0F;
      expect_same(shown);
    }
  }
}

// As many B-scans as the driver takes, with as many tables as there are.
TEST_F(SkippingTest, TakesAsManyBScansAsTheDriver) {
  beginOffscreenFrame(stage_.target, 8, 8);
  GLint most = 0;
  glGetIntegerv(GL_MAX_3D_TEXTURE_SIZE, &most);
  Choice choice(3);
  for (const int b_scans : {most / 2 - 1, most / 2, most / 2 + 1, most}) {
    scene_.volume = sparse_volume(5, 3, b_scans, choice);
    stage_.prepare(scene_);
    beginOffscreenFrame(stage_.target, 8, 8);
    expect_same(source());
    LiveFormat live(scene_.volume);
    VolumeSource shown = source();
    shown.volume = live.texture.get();
    shown.volume_revisions = &live.texture.revisions();
    shown.volume_maxima = &live.maxima;
    shown.empty_space = &live.empty_space;
    expect_same(shown);
  }
  expect_no_error();
}

}  // namespace
}  // namespace oct::test
