// Whole pictures of volumes and of the scene around them against the layers that a CPU computes.
#include <algorithm>
#include <array>
#include <cmath>
#include <functional>
#include <limits>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "gl/gl_names.h"
#include "offline/offline_volume_rendering.h"
#include "support/reference/reference_camera.h"
#include "support/reference/volume_reference.h"
#include "support/test_context.h"

namespace oct::test {
namespace {

using Change = std::function<void(VolumeScene&)>;
struct Case {
  std::string name;
  Change change;
};

// Seen from above the corner, with every axis of a different extent.
VolumeScene base_scene() {
  VolumeScene scene = scene_of(test_volume(40, 28, 34), 97, 71, 25.0, -35.0);
  scene.range = {1.5F, 2.0F, 2.5F};
  scene.coloring = {ramp_colors(256, 0.3), 0.2, 1.0};
  return scene;
}

// A ray along the rim of the box passes through less than a step; where the two rasterise a rim differently,
// or stop a step apart, one pixel differs by much. Elsewhere rounding is left.
constexpr Tolerance rays{1, 0.995, 140, 0.1};

// One stage for many scenes: nothing of an earlier one may show in a later one.
void expect_pictures(VolumeStage& stage, const VolumeScene& base, Tolerance tolerance,
                     const std::vector<Case>& cases, bool lines = false) {
  for (const auto& [name, change] : cases) {
    SCOPED_TRACE(name);
    VolumeScene scene = base;
    change(scene);
    const Picture picture = stage.draw(scene);
    EXPECT_EQ(pending_error(), "(none)");
    const ReferencePicture expected = reference_picture(scene);
    EXPECT_TRUE(agree(picture, expected, tolerance));
    if (!lines) continue;
    EXPECT_FALSE(expected.lines.empty());
    EXPECT_TRUE(lines_show(picture, expected, scene));
  }
}

void expect_pictures(const std::vector<Case>& cases) {
  VolumeStage stage;
  expect_pictures(stage, base_scene(), rays, cases);
}

void add_overlay(VolumeScene& scene) {
  scene.overlay = test_volume(40, 28, 34, 7);
  scene.overlay_coloring = {ramp_colors(64, 0.8), 0.6, 1.4};
  scene.content = 2;
}

void add_secondary(VolumeScene& scene) {
  scene.secondary = test_volume(3, 28, 34, 9);
  scene.secondary_coloring = {opaque_colors(32), 0.0, 1.0};
  scene.secondary_index = 1;
  scene.mode = 3;
}

TEST(VolumeImageTest, Modes) {
  expect_pictures({
      {"hard compositing", [](auto& s) { s.coloring.colors = ramp_colors(256, 1.0); }},
      {"maximum beyond upper", [](auto& s) { s.mode = 1, s.coloring.upper = 0.7; }},
      {"dual colouring, last image", [](auto& s) { add_secondary(s), s.secondary_index = 2; }},
      {"hard overlay", [](auto& s) { add_overlay(s), s.coloring.colors = ramp_colors(256, 1.0); }},
  });
}

void clip(VolumeScene& scene, float value) {
  scene.clip = true;
  scene.clip_value = value;
}

TEST(VolumeImageTest, EveryCombination) {
  std::vector<Case> cases;
  for (int i = 0; i < 48; ++i) {
    const int mode = i / 12;
    const int content = i % 3;
    const bool perspective = i / 3 % 2 != 0;
    const bool clipped = i / 6 % 2 != 0;
    cases.push_back({"case " + std::to_string(i), [=](VolumeScene& s) {
                       add_overlay(s), add_secondary(s);
                       s.mode = mode, s.content = content, s.perspective = perspective;
                       if (mode == 2) s.coloring.upper = 0.6;
                       if (clipped) clip(s, 0.45F);
                     }});
  }
  expect_pictures(cases);
}

// Light, opacity of a length and rays that begin at different places, of every mode and together.
TEST(VolumeImageTest, Looks) {
  const Case looks[] = {{"lit",
                         [](auto& s) {
                           s.lighting = {0.3, 0.8, 2.0};
                         }},
                        {"opacity of a length", [](auto& s) { s.opacity_length = 0.05; }},
                        {"jittered", [](auto& s) { s.jitter = true, s.slices = 40; }},
                        {"everything", [](auto& s) {
                           s.lighting = {0.0, 1.0, 0.3}, s.opacity_length = 0.02, s.jitter = true;
                         }}};
  std::vector<Case> cases;
  for (const Case& look : looks) {
    for (int i = 0; i < 10; ++i) {
      cases.push_back({look.name + ", case " + std::to_string(i), [&look, i](VolumeScene& s) {
                         if (i % 5 == 1) add_overlay(s);
                         if (i % 5 == 2) add_secondary(s);
                         if (i % 5 > 2) s.mode = i % 5 - 2;
                         if (i % 5 == 4) s.coloring.upper = 0.6;
                         s.perspective = i % 2 == 0;
                         s.range = i < 5 ? std::array{1.5F, 2.0F, 2.5F} : std::array{0.7F, 3.0F, -1.2F};
                         for (std::size_t v = 50; v < s.volume.voxels.size() && i > 4 && i < 8; v += 997)
                           s.volume.voxels[v] = std::numeric_limits<float>::quiet_NaN();
                         look.change(s);
                       }});
    }
  }
  expect_pictures(cases);
}

// A ball in fog.
VolumeScene smooth_scene() {
  VolumeScene scene = scene_of({32, 32, 32, {}}, 97, 71, 25.0, -35.0);
  for (int i = 0; i < 32 * 32 * 32; ++i) {
    const double apart = std::hypot(i % 32 - 15.5, i / 32 % 32 - 15.5, i / 1024 - 15.5);
    scene.volume.voxels.push_back(static_cast<float>(1.2 - apart / 20.0));
  }
  scene.coloring = {ramp_colors(256, 0.5), 0.0, 1.0};
  scene.opacity_length = 0.1;
  return scene;
}

// How two pictures differ in the means of 4 by 4 pixels, in levels: on average, and from one to the next.
struct Deviation {
  double mean = 0.0;
  double ripple = 0.0;
};

Deviation deviation(const Picture& one, const Picture& other) {
  constexpr int side = 4;
  Deviation result;
  int count = 0;
  for (int y = 0; y + side <= one.height; y += side) {
    double before = 0.0;
    for (int x = 0; x + side <= one.width; x += side, ++count) {
      double sum = 0.0;
      for (int i = 0; i < 3 * side * side; ++i) {
        const auto bgra = [&](const Picture& p) { return p.bgra(x + i / 3 % side, y + i / 3 / side); };
        sum += (bgra(one)[static_cast<std::size_t>(i % 3)] - bgra(other)[static_cast<std::size_t>(i % 3)]) /
               (3.0 * side * side);
      }
      result.mean += std::abs(sum);
      if (x > 0) result.ripple += std::abs(sum - before);
      before = sum;
    }
  }
  return {result.mean / count, result.ripple / count};
}

TEST(VolumeImageTest, OpacityOfALengthKeepsThePictureWhateverTheSlicesAndTheExtent) {
  VolumeStage stage;
  VolumeScene scene = smooth_scene();
  const auto with = [&](int slices, float scale, double length) {
    scene.slices = slices, scene.opacity_length = length;
    scene.range = {scale, 1.5F * scale, 0.8F * scale};
    return stage.draw(scene);
  };
  const Tolerance few_levels{6, 0.99, 40, 2.0};
  const Picture fine = with(512, 1.0F, 0.1);
  EXPECT_TRUE(agree(with(64, 1.0F, 0.1), fine, few_levels));
  EXPECT_TRUE(agree(with(512, 7.0F, 0.7), fine, {1, 0.999, 3})) << "tissue of another scale";
  EXPECT_GT(deviation(with(64, 1.0F, 0.0), with(512, 1.0F, 0.0)).mean, 5.0) << "without it";
  EXPECT_GT(deviation(with(512, 7.0F, 0.1), fine).mean, 5.0) << "more tissue of the same kind";
  with(128, 1.0F, 1e-300), with(128, 1.0F, 1e300), with(0, 1.0F, 0.1), with(128, 0.0F, 0.1);
  EXPECT_EQ(pending_error(), "(none)");
}

TEST(VolumeImageTest, JitterTurnsRingsIntoEvenGrain) {
  VolumeStage stage;
  VolumeScene scene = smooth_scene();
  scene.zoom = 12.0;
  scene.coloring.lower = 0.6;  // the ball alone
  scene.coloring.upper = 0.8;
  scene.opacity_length = 0.02;
  const auto with = [&](int slices, bool jitter) {
    scene.slices = slices, scene.jitter = jitter;
    return stage.draw(scene);
  };
  const Picture fine = with(8 * 24, false);
  const Deviation rings = deviation(with(24, false), fine);
  const Picture once = with(24, true);
  const Deviation grain = deviation(once, fine);
  EXPECT_LT(grain.ripple, 0.5 * rings.ripple);
  EXPECT_LT(grain.mean, 1.1 * rings.mean) << "no brighter and no darker";
  with(24, false);
  EXPECT_TRUE(agree(with(24, true), once, exact)) << "it does not flicker";
}

// A mean along no steps divides by zero; what that looks like is the driver's choice.
TEST(VolumeImageTest, Slices) {
  std::vector<Case> cases;
  for (const int mode : {0, 1, 2}) {
    for (const int count : {0, 1, 17, 512}) {
      if (mode == 2 && count < 17) continue;
      const double opacity = count == 512 ? 0.1 : 0.3;
      cases.push_back({std::to_string(count) + " slices, mode " + std::to_string(mode), [=](auto& s) {
                         s.slices = count, s.mode = mode;
                         s.coloring.colors = mode == 0 ? ramp_colors(256, opacity) : opaque_colors(256);
                       }});
    }
  }
  expect_pictures(cases);

  VolumeScene many = base_scene();
  many.viewport_width = 24;
  many.viewport_height = 18;
  many.mode = 1;
  many.slices = 8192;
  VolumeStage stage;
  const Picture finest = stage.draw(many);
  many.slices = std::numeric_limits<int>::max();
  EXPECT_TRUE(agree(stage.draw(many), finest, exact)) << "no driver takes so many steps";
}

Change range(float axial, float lateral1, float lateral2) {
  return [=](VolumeScene& s) { s.range = {axial, lateral1, lateral2}; };
}

Change moved_along(double z, double x = 0.0) {
  return [=](VolumeScene& s) { s.translation[0] = x, s.translation[2] = z; };
}

Change colors(std::vector<std::uint32_t> entries) {
  return [=](VolumeScene& s) { s.coloring.colors = entries; };
}

TEST(VolumeImageTest, Views) {
  expect_pictures({
      {"from behind", [](auto& s) { s.angle_x = 200.0, s.angle_y = -540.0 + 20.0; }},
      {"close", [](auto& s) { s.zoom = 15.0; }},
      {"close, orthographic", [](auto& s) { s.perspective = false, s.zoom = 14.0; }},
      {"beyond the far plane", moved_along(-1.5)},
      {"before the near plane", moved_along(0.5)},
      {"before the eye", moved_along(2.6, 0.7)},
      {"from inside", moved_along(4.3)},
      {"from inside, cut", [](auto& s) { moved_along(4.3)(s), clip(s, 0.35F); }},
      {"from inside what is cut off", [](auto& s) { moved_along(4.3)(s), clip(s, 0.7F); }},
      {"orthographic, behind the viewer", [](auto& s) { moved_along(16.0)(s), s.perspective = false; }},
      {"moved", [](auto& s) { s.translation[0] = 0.5, s.translation[1] = -0.3, s.translation[2] = -0.6; }},
      {"tall", [](auto& s) { s.viewport_width = 33, s.viewport_height = 120; }},
      {"wide", [](auto& s) { s.viewport_width = 151, s.viewport_height = 21; }},
      {"flat", range(0.2F, 3.0F, 2.0F)},
      {"deep and thin", range(3.0F, 0.4F, 0.3F)},
      {"millimetres", range(0.003F, 0.006F, 0.006F)},
      {"mirrored", range(1.5F, -2.0F, 2.5F)},
  });
}

void fixed_at(VolumeScene& scene, double angle_x, double angle_y) {
  clip(scene, 0.5F);
  scene.clip_fixed = true;
  scene.fixed_angle_x = angle_x;
  scene.fixed_angle_y = angle_y;
}

// A target with several samples for each pixel, that gives its picture to the target before.
class MultisampledTarget {
 public:
  MultisampledTarget(int width, int height) : width_(width), height_(height) {
    glGetIntegerv(GL_DRAW_FRAMEBUFFER_BINDING, &below_);
    glBindFramebuffer(GL_FRAMEBUFFER, framebuffer_.get());
    attach(color_, GL_COLOR_ATTACHMENT0, GL_RGBA8);
    attach(depth_, GL_DEPTH_ATTACHMENT, GL_DEPTH_COMPONENT24);
    EXPECT_EQ(glCheckFramebufferStatus(GL_FRAMEBUFFER), GLenum{GL_FRAMEBUFFER_COMPLETE});
  }
  ~MultisampledTarget() {
    glBindFramebuffer(GL_DRAW_FRAMEBUFFER, static_cast<GLuint>(below_));
    glBlitFramebuffer(0, 0, width_, height_, 0, 0, width_, height_, GL_COLOR_BUFFER_BIT, GL_NEAREST);
    glBindFramebuffer(GL_FRAMEBUFFER, static_cast<GLuint>(below_));
  }
  MultisampledTarget(const MultisampledTarget&) = delete;
  MultisampledTarget& operator=(const MultisampledTarget&) = delete;

 private:
  void attach(const gl::Renderbuffer& buffer, GLenum attachment, GLenum format) const {
    glBindRenderbuffer(GL_RENDERBUFFER, buffer.get());
    glRenderbufferStorageMultisample(GL_RENDERBUFFER, 4, format, width_, height_);
    glFramebufferRenderbuffer(GL_FRAMEBUFFER, attachment, GL_RENDERBUFFER, buffer.get());
  }

  int width_;
  int height_;
  GLint below_ = 0;
  gl::Framebuffer framebuffer_ = gl::Framebuffer::create();
  gl::Renderbuffer color_ = gl::Renderbuffer::create();
  gl::Renderbuffer depth_ = gl::Renderbuffer::create();
};

// At the rim a sample may lie in the box and the pixel's middle beside it: a ray that does not know where it ends
// must not run to the corner of the texture, where alone there is something to be seen.
TEST(VolumeImageTest, SamplesAtTheRimStartNoRaysWithoutEnd) {
  VolumeScene scene = base_scene();
  for (std::size_t i = 0; i < scene.volume.voxels.size(); ++i) {
    const bool corner =
        i / scene.volume.slice_voxels() < 8 && i % scene.volume.slice_voxels() / 40 < 8 && i % 40 < 8;
    scene.volume.voxels[i] = corner ? 1.0F : 0.0F;
  }
  scene.coloring = {{0x000000FFU, 0xFF0000FFU}, 0.4, 0.6};
  scene.mode = 1;
  const VolumeStage stage;
  Picture picture(scene.viewport_width, scene.viewport_height);
  for (const double angle : {-35.0, 20.0, 150.0}) {
    scene.angle_y = angle;
    apply(scene, stage.renderer);
    upload(scene, stage.offline);
    beginOffscreenFrame(stage.target, static_cast<unsigned>(picture.width),
                        static_cast<unsigned>(picture.height));
    {
      const MultisampledTarget target(picture.width, picture.height);
      // The export would switch the samples off.
      auto* const offline = reinterpret_cast<OfflineVolumeRendering*>(stage.offline);
      reinterpret_cast<VolumeRenderer*>(stage.renderer)
          ->render(offline->source(OfflineVolumeRendering::Content::volume));
    }
    finishOffscreenFrame(stage.target, picture.bytes.data());
    EXPECT_EQ(pending_error(), "(none)");
    EXPECT_TRUE(agree(picture, reference_picture(scene), {1, 0.99, 255}));
  }
}

void half_filled(VolumeScene& scene) {
  scene.slices_uploaded = scene.volume.depth / 2;
}

TEST(VolumeImageTest, Data) {
  expect_pictures({
      {"half filled", [](auto& s) { s.slices_uploaded = 17; }},
      {"one slice filled", [](auto& s) { s.slices_uploaded = 1; }},
      {"half filled, cut", [](auto& s) { half_filled(s), clip(s, 0.45F), s.removed_segment = true; }},
      {"half filled, cut by a plane that leaves through its end",
       [](auto& s) { half_filled(s), fixed_at(s, 10.0, 100.0), s.removed_segment = true; }},
      {"half filled, cut beyond its end",
       [](auto& s) { half_filled(s), fixed_at(s, 0.0, 180.0), clip(s, 0.1F); }},
      {"all but one filled", [](auto& s) { s.slices_uploaded = 33, s.angle_y = 150.0, s.mode = 1; }},
      {"one voxel", [](auto& s) { s.volume = test_volume(1, 1, 1), s.volume.voxels[0] = 0.75F; }},
      {"one slice", [](auto& s) { s.volume = test_volume(31, 17, 1); }},
      {"odd sizes", [](auto& s) { s.volume = test_volume(37, 5, 13); }},
      {"inverted", [](auto& s) { s.mode = 1, s.coloring.lower = 1.0, s.coloring.upper = 0.0; }},
      {"two colours", colors({0x00FF2010U, 0x20F0E0A0U})},
      {"one colour", colors({0x10F0A020U})},
      {"exactly at the lower boundary, where nothing is visible",
       [](auto& s) {
         s.volume.voxels.assign(s.volume.voxels.size(), 0.5F);
         s.coloring = {opaque_colors(16), 0.5, 1.0};
       }},
  });
}

Change seen_from(double angle_x, double angle_y, bool perspective = true) {
  return [=](VolumeScene& s) { s.angle_x = angle_x, s.angle_y = angle_y, s.perspective = perspective; };
}

TEST(VolumeImageTest, Clipped) {
  expect_pictures({
      {"almost all", [](auto& s) { clip(s, 0.1F); }},
      {"almost nothing", [](auto& s) { clip(s, 0.9F); }},
      {"open", [](auto& s) { clip(s, 0.5F), s.clip_open = true, s.coloring.colors = opaque_colors(256); }},
      // Corners of the box count as several points of the cut; its parts are drawn once all the same.
      {"through corners", [](auto& s) { clip(s, 0.5F), s.angle_x = 0.0, s.angle_y = 45.0; }},
      {"fixed from the side", [](auto& s) { fixed_at(s, 10.0, 30.0); }},
      // Seen through the volume: rays leave through the cut.
      {"fixed from behind",
       [](auto& s) { fixed_at(s, 10.0, 170.0), s.coloring.colors = opaque_colors(64), s.mode = 1; }},
  });
}

Change slices(Slice x, Slice y, Slice z, double opacity = 1.0) {
  return [=](VolumeScene& s) {
    s.sectional = true;
    s.sections = {x, y, z};
    s.coloring = {opacity < 1.0 ? ramp_colors(64, opacity) : opaque_colors(64), 0.1, 0.9};
  };
}

// Where two slices meet, a pixel may show the other one, and more do where they meet at a low angle.
constexpr Tolerance slices_meet{1, 0.99, 255, 0.5};

TEST(VolumeImageTest, SectionalView) {
  VolumeScene base = base_scene();
  base.viewport_width = 161;
  base.viewport_height = 127;
  const Change overlaid = slices({true, 0.5F}, {true, 0.4F}, {true, 0.25F});
  VolumeStage stage;
  expect_pictures(
      stage, base, slices_meet,
      {{"middle", slices({}, {}, {})},
       {"apart", slices({true, 0.2F}, {true, 0.7F}, {true, 0.9F})},
       {"overlay",
        [&](auto& s) {
          overlaid(s), add_overlay(s), s.overlay_coloring.lower = 0.3, s.overlay_coloring.upper = 1.1;
        }},
       {"low faces", slices({true, 0.0F}, {true, 0.0F}, {true, 0.0F})},
       {"high faces", slices({true, 1.0F}, {true, 1.0F}, {true, 1.0F})},
       {"beside the faces", slices({true, 0.99F}, {true, 0.01F}, {true, 0.01F}, 0.7)},
       {"half filled",
        [](auto& s) {
          slices({}, {}, {true, 0.3F})(s), half_filled(s);
        }},
       {"beyond what is filled",
        [](auto& s) {
          slices({}, {}, {true, 0.6F})(s), half_filled(s);
        }},
       {"before anything is filled", [](auto& s) { slices({}, {}, {})(s), s.slices_uploaded = 0; }},
       {"none", slices({false}, {false}, {false})}});
}

// Any angles and places: the cut, the faces of what it cuts off and the order of the slices.
TEST(VolumeImageTest, CutsFromAllSides) {
  std::mt19937 generator(5);
  std::uniform_real_distribution<double> angle(-180.0, 180.0);
  std::uniform_real_distribution<float> place(0.08F, 0.92F);
  std::vector<Case> cases;
  for (int i = 0; i < 20; ++i) {
    std::array<double, 4> angles;
    for (double& value : angles) value = angle(generator);
    std::array<float, 4> places;
    for (float& value : places) value = place(generator);
    const Change view = seen_from(angles[0], angles[1], i % 2 == 0);
    cases.push_back({std::to_string(i) + ", clipped", [=](auto& s) {
                       view(s);
                       if (i % 4 < 2) fixed_at(s, angles[2], angles[3]);
                       clip(s, places[3]);
                       s.removed_segment = true;
                       s.mode = i % 2;
                     }});
    const Change parts =
        slices({i % 7 != 1, places[0]}, {i % 5 != 1, places[1]}, {i % 3 != 1, places[2]}, 0.7);
    cases.push_back({std::to_string(i) + ", slices", [=](auto& s) { parts(s), view(s); }});
  }
  VolumeStage stage;
  expect_pictures(stage, base_scene(), slices_meet, cases);
}

HeightMap waves(int width, int height) {
  HeightMap map{width, height, 80.0, {}};
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      map.values.push_back(
          static_cast<float>(38.0 + 13.0 * std::sin(0.9 * column) * std::cos(0.7 * row) + 0.8 * row));
    }
  }
  return map;
}

VolumeScene surface_scene() {
  VolumeScene scene = scene_of(test_volume(24, 20, 22), 121, 97, 30.0, -25.0);
  scene.range = {1.2F, 2.0F, 2.6F};
  scene.coloring = {ramp_colors(256, 0.3), 0.2, 1.0};
  scene.surface = waves(9, 7);
  scene.surface_coloring = {opaque_colors(48), 30.0, 52.0};
  return scene;
}

Change raised(float by) {
  return [=](VolumeScene& s) {
    for (float& value : s.surface.values) value -= by;
  };
}

void expect_surfaces(VolumeStage& stage, Tolerance tolerance, const std::vector<Case>& places) {
  std::vector<Case> cases;
  for (const Case& place : places) {
    for (const Case& view : {Case{"from above", seen_from(30, -25)}, Case{"from below", seen_from(-35, 160)},
                             Case{"steep", seen_from(70, 10, false)}}) {
      cases.push_back(
          {place.name + ", " + view.name, [=](VolumeScene& s) { view.change(s), place.change(s); }});
    }
  }
  expect_pictures(stage, surface_scene(), tolerance, cases);
}

TEST(VolumeImageTest, Surface) {
  VolumeStage stage;
  // A silhouette pixel may fall to the other side; nothing else differs.
  expect_surfaces(
      stage, {1, 0.995, 255, 0.5},
      {{"alone", [](auto& s) { s.volume_shown = false; }},
       {"in a volume", [](auto& s) { s.box = true; }},
       {"in the maximum of a volume", [](auto& s) { s.mode = 1; }},
       {"in the mean of a volume", [](auto& s) { s.mode = 2, s.coloring.upper = 0.6; }},
       {"cut", [](auto& s) { clip(s, 0.5F), s.removed_segment = true; }},
       {"alone, cut", [](auto& s) { fixed_at(s, 10.0, 80.0), s.volume_shown = false; }},
       {"above the box", [](auto& s) { raised(70.0F)(s); }},
       {"below the box", [](auto& s) { raised(-70.0F)(s); }},
       {"beyond the far plane", [](auto& s) { moved_along(-5.0)(s), s.box = true; }},
       {"in a volume mirrored from side to side", range(1.2F, 2.0F, -2.6F)},
       {"upside down", [](auto& s) { range(-1.2F, 2.0F, 2.6F)(s), s.volume_shown = false; }},
       {"with an overlay", [](auto& s) { add_overlay(s), s.overlay = test_volume(24, 20, 22, 7); }},
       {"two by two", [](auto& s) {
          s.surface = {2, 2, 4.0, {1.0F, 3.0F, 1.0F, 3.0F}};
          s.surface_coloring.lower = 1.0, s.surface_coloring.upper = 3.0;
        }}});
  // Where it comes through a slice or a pane of glass, the border may lie a pixel beside.
  expect_surfaces(stage, {1, 0.97, 255, 0.5},
                  {{"among slices", [](auto& s) { slices({}, {}, {}, 0.3)(s), s.box = true; }},
                   {"among slices that would be invisible",
                    [](auto& s) { slices({}, {}, {})(s), colors({0x0000FF00U})(s); }},
                   {"half above the box", [](auto& s) { raised(40.0F)(s), s.box = true; }},
                   {"half below the box", [](auto& s) { raised(-42.0F)(s), s.box = true; }}});

  VolumeScene scene = surface_scene();
  scene.volume_shown = false;
  scene.surface = {2, 2, 1.0, std::vector<float>(4, std::numeric_limits<float>::quiet_NaN())};
  EXPECT_TRUE(agree(stage.draw(scene), background_picture(scene), {1, 1.0, 1}));
}

VolumeScene empty_scene() {
  VolumeScene scene = scene_of(test_volume(8, 8, 8), 200, 160, 25.0, -35.0);
  scene.range = {1.5F, 2.0F, 2.5F};
  scene.zoom = 45.0;
  scene.coloring.colors = {0x00000000U, 0x00000000U};  // nothing is seen of the volume
  return scene;
}

TEST(VolumeImageTest, Lines) {
  VolumeStage stage;
  expect_pictures(
      stage, empty_scene(), exact,
      {{"edges", [](auto& s) { s.edges = true; }},
       {"edges, orthographic", [](auto& s) { s.edges = true, s.perspective = false, s.zoom = 32.0; }},
       {"border of the cut", [](auto& s) { clip(s, 0.45F); }},
       {"border through four edges", [](auto& s) { clip(s, 0.6F), seen_from(10, 60)(s); }},
       {"border through three edges", [](auto& s) { clip(s, 0.15F), seen_from(35, -45)(s); }},
       {"outline of a slice",
        [](auto& s) {
          slices({true, 0.3F}, {false}, {false})(s), colors({0xFF000000U})(s);
        }}},
      true);
  VolumeScene scene = empty_scene();
  scene.edges = true;
  scene.volume_shown = false;
  const Picture alone = stage.draw(scene);
  scene.volume_shown = true;
  slices({false}, {false}, {false})(scene);
  EXPECT_TRUE(agree(stage.draw(scene), alone, exact)) << "slices do not make the far edges heavier";

  // What lines cover shows in the difference of two colours.
  scene = empty_scene();
  scene.edges = true;
  scene.volume_shown = false;
  const auto coverage = [&] {
    scene.foreground = 0xFFFFFFFFU;
    Picture white = stage.draw(scene);
    scene.foreground = 0x000000FFU;
    const Picture black = stage.draw(scene);
    std::transform(white.bytes.begin(), white.bytes.end(), black.bytes.begin(), white.bytes.begin(),
                   std::minus<>());
    return white;
  };
  const Picture edges = coverage();
  scene.surface = {2, 2, 1.0, {1.0F, 1.0F, 1.0F, 1.0F}};
  EXPECT_TRUE(agree(coverage(), edges, {2, 0.9999, 20})) << "edges on a surface are as strong as others";
}

TEST(VolumeImageTest, Panes) {
  VolumeStage stage;
  expect_pictures(
      stage, empty_scene(), {},
      {{"nothing, with the value of a plane that is off", [](auto& s) { s.clip_value = 0.45F; }}});
  expect_pictures(stage, empty_scene(), {2, 0.995, 60},
                  {{"the box is glass", [](auto& s) { s.box = true; }},
                   {"around a volume", [=](auto& s) {
                      s.box = true, s.coloring = {{0xFF2040A0U}, -1.0, 1.0};
                    }}});
  expect_pictures(
      stage, empty_scene(), {2, 0.998, 255},
      {{"the removed segment is a ghost", [](auto& s) { clip(s, 0.45F), s.removed_segment = true; }}});
}

}  // namespace
}  // namespace oct::test
