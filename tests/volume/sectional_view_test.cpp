// The slices of the sectional view: order of drawing, and whole pictures against rays through the three
// planes.
#include "volume/passes/sectional_view.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <glm/gtc/random.hpp>
#include <optional>
#include <random>

#include "support/reference_camera.h"
#include "support/test_context.h"
#include "support/volume_reference.h"

namespace oct::test {
namespace {

std::optional<double> hitTriangle(const glm::dvec3& origin, const glm::dvec3& direction,
                                  const glm::vec3* triangle) {
  const glm::dvec3 a(triangle[0]);
  const glm::dvec3 u = glm::dvec3(triangle[1]) - a;
  const glm::dvec3 v = glm::dvec3(triangle[2]) - a;
  const glm::dvec3 n = glm::cross(u, v);
  const double t = glm::dot(n, a - origin) / glm::dot(n, direction);
  const glm::dvec3 p = origin + t * direction - a;
  const double area = glm::dot(n, n);
  const double first = glm::dot(glm::cross(p, v), n) / area;
  const double second = glm::dot(glm::cross(u, p), n) / area;
  if (first < 0.0 || second < 0.0 || first + second > 1.0) return std::nullopt;
  return t;
}

TEST(SectionTrianglesTest, AreDrawnFromFarToNear) {
  std::mt19937 generator(11);
  std::uniform_real_distribution<float> unit(0.0F, 1.0F);
  std::uniform_real_distribution<double> place(-6.0, 6.0);
  std::uniform_real_distribution<double> inside(-1.0, 1.0);
  for (int scene = 0; scene < 60; ++scene) {
    Sections sections{Section{scene % 7 != 1, unit(generator)}, Section{scene % 5 != 1, unit(generator)},
                      Section{scene % 3 != 1, unit(generator)}};
    const bool orthographic = scene % 2 != 0;
    const glm::dvec3 eye(place(generator), place(generator), place(generator));
    const auto triangles = sectionTriangles(sections, glm::vec4(glm::vec3(eye), orthographic ? 0.0F : 1.0F));
    for (int ray = 0; ray < 200; ++ray) {
      const glm::dvec3 target(inside(generator), inside(generator), inside(generator));
      const glm::dvec3 direction = orthographic ? -eye : target - eye;
      const glm::dvec3 origin = orthographic ? target + 10.0 * eye : eye;
      std::vector<double> hits;
      for (std::size_t i = 0; i < triangles.size(); i += 3) {
        if (const auto t = hitTriangle(origin, direction, &triangles[i])) hits.push_back(*t);
      }
      EXPECT_TRUE(std::is_sorted(hits.begin(), hits.end(), std::greater<>())) << "scene " << scene;

      std::size_t expected = 0;  // slices that the ray passes
      for (int axis = 0; axis < 3; ++axis) {
        const Section& section = sections[static_cast<std::size_t>(axis)];
        const double t = (2.0 * section.position - 1.0 - origin[axis]) / direction[axis];
        const glm::dvec3 p = origin + t * direction;
        const double reach = std::max(std::abs(p[(axis + 1) % 3]), std::abs(p[(axis + 2) % 3]));
        expected += section.shown && reach < 1.0;
      }
      EXPECT_EQ(hits.size(), expected) << "scene " << scene;
    }
  }
}

TEST(CrossSectionTest, SpansTheBox) {
  for (int axis = 0; axis < 3; ++axis) {
    const CrossSection quad = crossSection(axis, 0.5F);
    for (std::size_t i = 0; i < 4; ++i) {
      EXPECT_EQ(quad[i][axis], 0.5F);
      EXPECT_EQ(std::abs(quad[i][(axis + 1) % 3]), 1.0F);
      EXPECT_EQ(std::abs(quad[i][(axis + 2) % 3]), 1.0F);
      EXPECT_EQ(glm::length(quad[i] - quad[(i + 1) % 4]), 2.0F) << "neighbours share an edge";
    }
  }
}

glm::dvec4 sliceColor(const VolumeScene& scene, const glm::dvec3& point) {
  const glm::dvec3 texture = 0.5 * glm::dvec3(point.y, point.x, point.z) + 0.5;
  const auto color = [&](const Volume& volume, const Coloring& coloring) {
    const double value = voxelAt(volume, texture);
    return mappedColor(coloring.colors, (value - coloring.lower) / (coloring.upper - coloring.lower));
  };
  const glm::dvec4 base = color(scene.volume, scene.coloring);
  if (scene.content != 2) return base;
  const glm::dvec4 over = color(scene.overlay, scene.overlayColoring);
  return glm::mix(base, over, over.a);
}

// Pixels that an outline may touch, and those at which slices meet, are left as the library has drawn them.
Picture referenceSections(const VolumeScene& scene, const Sections& sections, const Picture& drawn,
                          int& compared) {
  const ReferenceCamera camera(scene);
  Picture picture = drawn;
  picture.forEach([&](int column, int row) {
    const glm::dvec2 centre(column + 0.5, row + 0.5);
    bool onOutline = false;
    const auto [origin, direction] = camera.modelLine(column, row);
    std::vector<std::pair<double, glm::dvec3>> hits;
    for (int axis = 0; axis < 3; ++axis) {
      const Section& section = sections[static_cast<std::size_t>(axis)];
      if (!section.shown) continue;
      const CrossSection quad = crossSection(axis, 2.0F * section.position - 1.0F);
      for (std::size_t i = 0; i < 4; ++i) {
        onOutline |=
            distanceToSegment(centre, camera.toWindow(quad[i]), camera.toWindow(quad[(i + 1) % 4])) < 1.6;
      }
      const double t = (2.0 * section.position - 1.0 - origin[axis]) / direction[axis];
      const glm::dvec3 p = origin + t * direction;
      if (std::max(std::abs(p[(axis + 1) % 3]), std::abs(p[(axis + 2) % 3])) > 1.0) continue;
      hits.emplace_back(t, p);
    }
    if (onOutline) return;
    std::sort(hits.begin(), hits.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
    glm::dvec3 color = backgroundColor(scene, row);
    for (const auto& [t, point] : hits) {
      const glm::dvec4 slice = sliceColor(scene, point);
      color = glm::mix(color, glm::dvec3(slice), slice.a);
    }
    setPixel(picture, column, row, color);
    ++compared;
  });
  return picture;
}

TEST(SectionalViewImageTest, EqualsTheArithmetic) {
  struct Case {
    const char* name;
    Sections sections;
    bool translucent = false;
    bool overlay = false;
    bool perspective = true;
  };
  const Sections apart{Section{true, 0.2F}, Section{true, 0.7F}, Section{true, 0.9F}};
  const Case cases[] = {
      {"middle", {Section{}, Section{}, Section{}}},
      {"apart", apart},
      {.name = "orthographic", .sections = apart, .perspective = false},
      {"one hidden", {Section{true, 0.3F}, Section{false, 0.6F}, Section{true, 0.6F}}},
      {"translucent", {Section{true, 0.3F}, Section{true, 0.6F}, Section{true, 0.55F}}, true},
      {"overlay", {Section{true, 0.5F}, Section{true, 0.4F}, Section{true, 0.25F}}, false, true},
      {"low faces", {Section{true, 0.0F}, Section{true, 0.0F}, Section{true, 0.0F}}},
      {"high faces", {Section{true, 1.0F}, Section{true, 1.0F}, Section{true, 1.0F}}},
      {"beside the faces", {Section{true, 0.99F}, Section{true, 0.01F}, Section{true, 0.01F}}, true},
      {"none", {Section{false, 0.5F}, Section{false, 0.5F}, Section{false, 0.5F}}},
  };
  VolumeStage stage;
  for (const auto& [name, sections, translucent, overlay, perspective] : cases) {
    SCOPED_TRACE(name);
    VolumeScene scene = sceneOf(testVolume(40, 28, 34), 161, 127, 25.0, -35.0);
    scene.range = {1.5F, 2.0F, 2.5F};
    scene.perspective = perspective;
    scene.coloring = {translucent ? rampColors(64, 0.7) : opaqueColors(64), 0.1, 0.9};
    if (overlay) {
      scene.overlay = testVolume(40, 28, 34, 7);
      scene.overlayColoring = {rampColors(64, 0.8), 0.3, 1.1};
      scene.content = 2;
    }
    const auto& [x, y, z] = sections;
    setSectionalView(stage.renderer, x.shown, x.position, y.shown, y.position, z.shown, z.position);
    stage.prepare(scene);
    setRenderingMode(stage.renderer, 1);
    const Picture drawn = stage.frame();
    EXPECT_EQ(pendingError(), "(none)");
    int compared = 0;
    const Picture expected = referenceSections(scene, sections, drawn, compared);
    EXPECT_GT(compared, scene.viewportWidth * scene.viewportHeight * 3 / 4);
    // Where two slices meet, one pixel may show the other one.
    EXPECT_TRUE(agree(drawn, expected, {1, 0.995, 255, 0.1}));
  }
}

// The outline of a slice in the foreground colour, where the box's edges are off.
TEST(SectionalViewOutlineTest, RunsAroundTheSlice) {
  VolumeScene scene = sceneOf(testVolume(16, 16, 16), 160, 120, 20.0, 40.0);
  scene.backgroundBottom = scene.backgroundTop = 0x000000FFU;
  scene.coloring = {{0xFF000000U, 0xFF000000U}, 0.0, 1.0};  // black slices
  VolumeStage stage;
  stage.prepare(scene);
  setRenderingMode(stage.renderer, 1);
  setSectionalView(stage.renderer, 1, 0.3F, 0, 0.5F, 0, 0.5F);
  setRenderForeground(stage.renderer, 0x40FF80FFU);
  const Picture drawn = stage.frame();
  const ReferenceCamera camera(scene);
  const CrossSection quad = crossSection(0, -0.4F);
  for (std::size_t side = 0; side < 4; ++side) {
    for (double t = 0.05; t < 1.0; t += 0.05) {
      const glm::dvec2 at =
          camera.toWindow(glm::mix(glm::dvec3(quad[side]), glm::dvec3(quad[(side + 1) % 4]), t));
      double green = 0.0;  // of the pixels around, which share the line's
      for (int i = 0; i < 25; ++i) {
        const std::uint8_t* const pixel =
            drawn.pixel(static_cast<int>(at.x) + i % 5 - 2, static_cast<int>(at.y) + i / 5 - 2);
        green = std::max(green, static_cast<double>(pixel[1]));
        EXPECT_NEAR(pixel[0] * 2.0, pixel[1], 3.0) << "no colour but the foreground's";
      }
      EXPECT_GT(green, 110.0) << "side " << side << " at " << t;
    }
  }
}

}  // namespace
}  // namespace oct::test
