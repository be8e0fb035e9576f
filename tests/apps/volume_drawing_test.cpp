// A drawing that is kept shows what a new one would, whatever it showed before.
#include <functional>
#include <vector>

#include <gtest/gtest.h>

#include "data/opacity.h"
#include "scene/offscreen_picture.h"
#include "scene/volume_scene.h"

namespace oct::app {
namespace {

constexpr PictureSize size{72, 56};

std::shared_ptr<const VolumeData> some_volume(std::size_t bscans, std::size_t period) {
  VolumeData data{12, 10, bscans, {}, {}, {1, 1, 1}, {12, 10, bscans}};
  for (std::size_t i = 0; i < 120 * bscans; ++i)
    data.voxels.push_back(static_cast<float>(i * i / 7 % period) / static_cast<float>(period));
  return std::make_shared<const VolumeData>(std::move(data));
}

Colormap colors_of(const char* name, double opacity) {
  Colormap colors = *find_colormap(name);
  set_opacity(colors, {.highest = opacity, .shift = 0, .points = {}});
  return colors;
}

VolumeScene first_scene() {
  VolumeScene scene;
  scene.size = size;
  scene.angles = {25, -35};
  scene.slices = 40;
  scene.extent = {2, 3, 4};
  scene.base = {some_volume(9, 11), {0.1, 0.9}, colors_of("inferno", 0.4)};
  return scene;
}

std::vector<std::uint8_t> drawn(OffscreenTarget& target, VolumeDrawing& drawing) {
  while (drawing.upload(1)) {
  }
  return draw_picture(target, size, largest_tile, &setRendererPart, drawing.renderer(),
                      [&] { drawing.draw(); })
      .pixels;
}

std::vector<std::uint8_t> drawn_anew(OffscreenTarget& target, const VolumeScene& scene) {
  VolumeDrawing drawing;
  drawing.set(scene);
  return drawn(target, drawing);
}

TEST(VolumeDrawing, ShowsEachSceneAsANewOneWould) {
  const auto other_values = some_volume(9, 5);
  const auto other_size = some_volume(7, 13);
  const auto heights = std::make_shared<const std::vector<float>>(90, 6.5F);
  const auto low_heights = std::make_shared<const std::vector<float>>(90, 2.0F);
  const auto map = std::make_shared<const LateralMap>(LateralMap{3, 2, {0, 1, 0.3F, 0.7F, 1, 0}});
  const std::vector<std::function<void(VolumeScene&)>> changes{
      [](VolumeScene& s) {
        s.clip = ClipSetting{0.6, true, true};
      },
      [](VolumeScene& s) { s.angles[1] = 80; },
      [&](VolumeScene& s) {
        s.overlay = VolumeLayer{other_values, {0, 1}, colors_of("viridis", 1)};
      },
      [](VolumeScene& s) { s.clip.reset(); },
      [&](VolumeScene& s) { s.base.data = other_values; },
      [](VolumeScene& s) { s.show_overlay = false; },
      [&](VolumeScene& s) { s.overlay->data = s.base.data; },
      [](VolumeScene& s) { s.show_overlay = true; },
      [&](VolumeScene& s) {
        s.surface = HeightMap{heights, {0, 12}, colors_of("gray", 1)};
      },
      [](VolumeScene& s) { s.overlay.reset(); },
      [&](VolumeScene& s) { s.surface->depths = low_heights; },
      [](VolumeScene& s) {
        s.base.range = {0.3, 0.5};
      },
      [](VolumeScene& s) { s.show_surface = false; },
      [&](VolumeScene& s) {
        s.secondary = SecondaryColoring{map, {0, 1}, colors_of("viridis", 1)};
      },
      [](VolumeScene& s) { s.secondary_colors = true; },
      [](VolumeScene& s) { s.surface.reset(); },
      [&](VolumeScene& s) { s.base.data = other_size; },
      [](VolumeScene& s) {
        s.secondary->range = {0, 3};
      },
      [](VolumeScene& s) {
        s.secondary_colors = false;
        s.secondary.reset();
      },
      [](VolumeScene& s) {
        s.look = VolumeLook::sections;
        s.sections[1] = 0.2F;
      },
      [](VolumeScene& s) {
        s.base.colormap = colors_of("viridis", 0.1);
        s.extent[0] = 5;
      }};
  OffscreenTarget target;
  VolumeDrawing drawing;
  VolumeScene scene = first_scene();
  for (std::size_t i = 0; i <= changes.size(); ++i) {
    drawing.set(scene);
    EXPECT_TRUE(drawn(target, drawing) == drawn_anew(target, scene)) << i;
    if (i < changes.size()) changes[i](scene);
  }
}

TEST(VolumeDrawing, HandsDataOverInBlocksAndOnlyOnce) {
  OffscreenTarget target;
  VolumeDrawing drawing;
  VolumeScene scene = first_scene();
  drawing.set(scene);
  EXPECT_EQ(drawing.uploaded(), 0);
  int blocks = 1;
  while (drawing.upload(2 * 120 * sizeof(float))) ++blocks;
  EXPECT_EQ(blocks, 5);  // of two B-scans, of nine
  scene.base.range = {0, 1};
  scene.zoom = 30;
  drawing.set(scene);
  EXPECT_EQ(drawing.uploaded(), 1);
}

// A scene that the driver refuses leaves the next one whole.
TEST(VolumeDrawing, GoesOnAfterWhatCannotBeDrawn) {
  OffscreenTarget target;
  VolumeDrawing drawing;
  const VolumeScene scene = first_scene();
  drawing.set(scene);
  VolumeScene refused = scene;
  auto endless = std::make_shared<VolumeData>();
  endless->depth = std::size_t{1} << 30;
  endless->ascans = endless->bscans = 1;
  refused.base.data = endless;
  EXPECT_THROW(drawing.set(refused), RenderingError);
  EXPECT_FALSE(drawing.upload());
  drawing.set(scene);
  EXPECT_TRUE(drawn(target, drawing) == drawn_anew(target, scene));
}

}  // namespace
}  // namespace oct::app
