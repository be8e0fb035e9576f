// The height map surface: its mesh, and whole pictures against rays that meet the mesh.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "support/gl_spy.h"
#include "support/reference_camera.h"
#include "support/test_context.h"
#include "volume/layout/surface_mesh.h"

namespace oct::test {
namespace {

constexpr float nan = std::numeric_limits<float>::quiet_NaN();

struct HeightMap {
  int width = 0;
  int height = 0;
  double scale = 1.0;
  std::vector<float> values;
  float at(int column, int row) const { return values[static_cast<std::size_t>(row * width + column)]; }
};

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

// Places, normals, partition and winding show in the pictures below.
TEST(SurfaceMeshTest, SamplesThatAreNoNumbersLeaveAHole) {
  HeightMap map = waves(6, 5);
  map.values[2 * 6 + 3] = nan;
  map.values[0] = std::numeric_limits<float>::infinity();
  const SurfaceMesh mesh = surfaceMesh(6, 5, 80.0, map.values.data());
  EXPECT_EQ(mesh.triangles.size(), (5U * 4U - 4U - 1U) * 2U * 3U);
  for (const std::uint32_t index : mesh.triangles) {
    EXPECT_TRUE(std::isfinite(mesh.vertices[index].z));
    EXPECT_NEAR(glm::length(mesh.normals[index]), 1.0F, 1e-5F);
  }
}

TEST(SurfaceMeshTest, SmallAndWrongSizes) {
  const float value = 1.0F;
  EXPECT_TRUE(surfaceMesh(0, 0, 0.0, nullptr).vertices.empty());
  EXPECT_TRUE(surfaceMesh(0, 5, 1.0, nullptr).vertices.empty());
  const SurfaceMesh point = surfaceMesh(1, 1, 4.0, &value);
  ASSERT_EQ(point.vertices.size(), 1U);
  EXPECT_EQ(point.vertices[0], glm::vec3(0.0F, 0.0F, -0.5F));
  EXPECT_TRUE(point.triangles.empty());
  EXPECT_THROW(surfaceMesh(-1, 1, 1.0, &value), std::invalid_argument);
  EXPECT_THROW(surfaceMesh(1, -1, 1.0, &value), std::invalid_argument);
  EXPECT_THROW(surfaceMesh(1, 1, 1.0, nullptr), std::invalid_argument);
  EXPECT_THROW(surfaceMesh(1, 1, 0.0, &value), std::invalid_argument);
  EXPECT_THROW(surfaceMesh(65536, 65536, 1.0, &value), std::invalid_argument);
}

struct Vertex {
  glm::dvec3 eye;
  glm::dvec3 normal;  // eye coordinates
  double depth;       // 0 to 1
};

struct Sheet {
  std::vector<Vertex> vertices;
  std::vector<std::array<int, 3>> triangles;  // counter-clockwise seen from smaller depth
};

// The mesh in eye coordinates, from the formulas.
Sheet sheetOf(const HeightMap& map, const ReferenceCamera& camera, double lower, double upper) {
  Sheet sheet;
  const auto height = [&](int column, int row) { return 2.0 * map.at(column, row) / map.scale - 1.0; };
  const auto slope = [&](int column, int row, int dx, int dy) {
    const int c0 = std::max(column - dx, 0), c1 = std::min(column + dx, map.width - 1);
    const int r0 = std::max(row - dy, 0), r1 = std::min(row + dy, map.height - 1);
    const double run = 2.0 * (c1 - c0) / (map.width - 1) + 2.0 * (r1 - r0) / (map.height - 1);
    return (height(c1, r1) - height(c0, r0)) / run;
  };
  const double low = 2.0 * lower / map.scale - 1.0;
  const double high = 2.0 * upper / map.scale - 1.0;
  for (int row = 0; row < map.height; ++row) {
    for (int column = 0; column < map.width; ++column) {
      const double z = height(column, row);
      const glm::dvec3 model((2.0 * column - (map.width - 1)) / (map.width - 1), z,
                             (2.0 * row - (map.height - 1)) / (map.height - 1));
      const glm::dvec3 normal(-slope(column, row, 1, 0), 1.0, -slope(column, row, 0, 1));
      sheet.vertices.push_back({camera.toEye(model),
                                glm::normalize(glm::transpose(glm::inverse(camera.linear())) * normal),
                                glm::clamp(((z - low) / (high - low) + 1.0) / 2.0, 0.0, 1.0)});
    }
  }
  for (int row = 0; row + 1 < map.height; ++row) {
    for (int column = 0; column + 1 < map.width; ++column) {
      const int a = row * map.width + column, b = a + 1, c = a + map.width, d = c + 1;
      if (std::abs(map.at(column, row) - map.at(column + 1, row + 1)) <=
          std::abs(map.at(column + 1, row) - map.at(column, row + 1))) {
        sheet.triangles.insert(sheet.triangles.end(), {{a, d, b}, {a, c, d}});
      } else {
        sheet.triangles.insert(sheet.triangles.end(), {{a, c, b}, {b, c, d}});
      }
    }
  }
  return sheet;
}

glm::dvec3 shaded(const std::array<const Vertex*, 3>& corners, const glm::dvec3& weights, bool front,
                  const std::vector<std::uint32_t>& colors) {
  glm::dvec3 s(0.0), v(0.0), r(0.0), n(0.0);
  double depth = 0.0;
  for (int i = 0; i < 3; ++i) {
    const Vertex& corner = *corners[static_cast<std::size_t>(i)];
    const glm::dvec3 light = glm::normalize(glm::dvec3(10, 10, -5) - corner.eye);
    s += weights[i] * light;
    v += weights[i] * glm::normalize(-corner.eye);
    r += weights[i] * (-light - 2.0 * glm::dot(corner.normal, -light) * corner.normal);
    n += weights[i] * corner.normal;
    depth += weights[i] * corner.depth;
  }
  const glm::dvec3 base(mappedColor(colors, 1.0 - depth));
  const double diffuse = std::max(glm::dot(s, front ? -n : n), 0.0);
  const double specular = diffuse > 0.0 ? 0.9 * std::pow(std::max(glm::dot(r, v), 0.0), 3.0) : 0.0;
  return 0.25 * base + 0.55 * base * diffuse + specular;
}

Picture referenceSurface(const VolumeScene& scene, const HeightMap& map, double lower, double upper,
                         const std::vector<std::uint32_t>& colors) {
  const ReferenceCamera camera(scene);
  const Sheet sheet = sheetOf(map, camera, lower, upper);
  Picture picture(scene.viewportWidth, scene.viewportHeight);
  picture.forEach([&](int column, int row) {
    glm::dvec3 color = backgroundColor(scene, row);
    const auto line = camera.line(column, row);
    double nearest = 1e9;
    for (const auto& triangle : sheet.triangles) {
      std::array<const Vertex*, 3> corners{};
      for (std::size_t i = 0; i < 3; ++i) corners[i] = &sheet.vertices[static_cast<std::size_t>(triangle[i])];
      const glm::dvec3 u = corners[1]->eye - corners[0]->eye;
      const glm::dvec3 w = corners[2]->eye - corners[0]->eye;
      const glm::dvec3 n = glm::cross(u, w);
      const double towards = glm::dot(n, line.direction);
      const double t = glm::dot(n, corners[0]->eye - line.origin) / towards;
      if (!(t < nearest)) continue;
      const glm::dvec3 p = line.origin + t * line.direction - corners[0]->eye;
      const double second = glm::dot(glm::cross(p, w), n) / glm::dot(n, n);
      const double third = glm::dot(glm::cross(u, p), n) / glm::dot(n, n);
      if (second < 0.0 || third < 0.0 || second + third > 1.0) continue;
      nearest = t;
      color = shaded(corners, {1.0 - second - third, second, third}, towards < 0.0, colors);
    }
    setPixel(picture, column, row, color);
  });
  return picture;
}

class SurfaceImageTest : public testing::Test {
 protected:
  SurfaceImageTest() {
    scene_.range = {1.2F, 2.0F, 2.6F};
    setSurfaceColormap(stage_.renderer, colors_.data(), static_cast<int>(colors_.size()));
  }

  Picture draw(const HeightMap& map, bool volume = false) {
    stage_.prepare(scene_);
    setSurface(stage_.renderer, map.width, map.height, map.scale, map.values.data());
    setSurfaceDepths(stage_.renderer, lower_, upper_);
    setRenderElements(stage_.renderer, volume, 1);
    return stage_.frame();
  }

  // A silhouette pixel may fall to the other side; nothing else differs.
  void expectSurface(const HeightMap& map) {
    const Picture expected = referenceSurface(scene_, map, lower_, upper_, colors_);
    EXPECT_TRUE(agree(draw(map), expected, {1, 0.995, 255, 0.5})) << scene_.angleX << ", " << scene_.angleY;
  }

  VolumeStage stage_;
  VolumeScene scene_ = sceneOf(testVolume(8, 8, 8), 121, 97, 30.0, -25.0);
  std::vector<std::uint32_t> colors_ = opaqueColors(48);
  double lower_ = 30.0;
  double upper_ = 52.0;
};

TEST_F(SurfaceImageTest, EqualsTheArithmetic) {
  for (const auto& [angleX, angleY, perspective] :
       {std::tuple{30, -25, true}, {-35, 160, true}, {70, 10, false}, {0, 0, true}}) {
    scene_.angleX = angleX;
    scene_.angleY = angleY;
    scene_.perspective = perspective;
    expectSurface(waves(12, 10));
  }
  EXPECT_EQ(pendingError(), "(none)");
}

TEST_F(SurfaceImageTest, ChangesAreSeenInTheNextFrame) {
  draw(waves(12, 10));
  HeightMap flat{2, 2, 4.0, {1.0F, 3.0F, 1.0F, 3.0F}};
  lower_ = 1.0;
  upper_ = 3.0;
  expectSurface(flat);
  setSurface(stage_.renderer, 0, 0, 1.0, nullptr);
  const HeightMap none{2, 2, 1.0, std::vector<float>(4, nan)};
  EXPECT_TRUE(agree(stage_.frame(), backgroundPicture(scene_), {1, 1.0, 1}));
  EXPECT_TRUE(agree(draw(none), backgroundPicture(scene_), {1, 1.0, 1}));
}

TEST_F(SurfaceImageTest, MisuseIsRefusedAndKeepsTheSurface) {
  const HeightMap map = waves(12, 10);
  const Picture before = draw(map);
  setSurface(stage_.renderer, -1, 3, 1.0, map.values.data());
  EXPECT_EQ(pendingError(), "The size of a surface must not be negative. ");
  setSurface(stage_.renderer, 3, 3, 1.0, nullptr);
  EXPECT_EQ(pendingError(), "Surface data must not be null. ");
  setSurface(stage_.renderer, 3, 3, 0.0, map.values.data());
  EXPECT_EQ(pendingError(), "The scale of a surface must be a number other than zero. ");
  EXPECT_TRUE(agree(stage_.frame(), before, exact));
}

// The rays' own depth is that of the box's near side, which must not hide what lies inside.
TEST_F(SurfaceImageTest, IsSeenInsideTheVolume) {
  const Picture alone = draw(waves(12, 10));
  scene_.coloring = {{0x00000000U, 0x00000000U}, 0.0, 1.0};  // a volume that nobody sees
  EXPECT_TRUE(agree(draw(waves(12, 10), true), alone));
}

TEST_F(SurfaceImageTest, IsUploadedOnceAndFailuresAreReported) {
  const HeightMap map = waves(12, 10);
  const Picture before = draw(map);
  {
    GlSpy spy;
    stage_.frame();
    const int perFrame = spy.calls("glBufferData");
    stage_.frame();
    EXPECT_EQ(spy.calls("glBufferData"), 2 * perFrame);
    setSurface(stage_.renderer, map.width, map.height, map.scale, map.values.data());
    stage_.frame();
    EXPECT_EQ(spy.calls("glBufferData"), 3 * perFrame + 3) << "positions, normals and indices";
    setSurface(stage_.renderer, map.width, map.height, map.scale, map.values.data());
    spy.failNext("glBufferData", perFrame + 1);
    stage_.frame();
    EXPECT_EQ(pendingError().find("An OpenGL error in VolumeRenderer::surface changed occured: "), 0U);
    clearGLErrors();
    EXPECT_TRUE(agree(stage_.frame(), before, exact)) << "the next frame uploads it again";
  }
  stage_.restart();
  apply(scene_, stage_.renderer);
  setSurfaceColormap(stage_.renderer, colors_.data(), static_cast<int>(colors_.size()));
  setSurfaceDepths(stage_.renderer, lower_, upper_);
  setRenderElements(stage_.renderer, 0, 1);
  EXPECT_TRUE(agree(stage_.frame(), before, exact)) << "the mesh outlives its OpenGL objects";
}

}  // namespace
}  // namespace oct::test
