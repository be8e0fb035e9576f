#include "random_scene.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace oct::test {

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

}  // namespace oct::test
