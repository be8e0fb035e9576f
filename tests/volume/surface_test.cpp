// The height map surface: holes and wrong sizes of its mesh, and when it is uploaded. Its places, normals,
// partition and winding show in the pictures.
#include "volume/layout/surface_mesh.h"

#include <cmath>
#include <limits>

#include "support/gl_spy.h"
#include "volume/volume_test.h"

namespace oct::test {
namespace {

HeightMap slope(int width, int height) {
  HeightMap map{width, height, 80.0, {}};
  for (int i = 0; i < width * height; ++i) map.values.push_back(20.0F + static_cast<float>(i % width));
  return map;
}

TEST(SurfaceMeshTest, SamplesThatAreNoNumbersLeaveAHole) {
  HeightMap map = slope(6, 5);
  map.values[2 * 6 + 3] = std::numeric_limits<float>::quiet_NaN();
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
  EXPECT_EQ(point.vertices, (std::vector<glm::vec3>{{0.0F, 0.0F, -0.5F}}));
  EXPECT_TRUE(point.triangles.empty());
  for (const auto& [width, height, scale, data] : {std::tuple{-1, 1, 1.0, &value},
                                                   {1, -1, 1.0, &value},
                                                   {1, 1, 1.0, static_cast<const float*>(nullptr)},
                                                   {1, 1, 0.0, &value},
                                                   {65536, 65536, 1.0, &value}}) {
    EXPECT_THROW(surfaceMesh(width, height, scale, data), std::invalid_argument) << width << " x " << height;
  }
}

using SurfaceTest = VolumeTest;

TEST_F(SurfaceTest, IsUploadedOnceAndFailuresAreReported) {
  scene_.surface = slope(12, 10);
  scene_.surfaceColoring = {opaqueColors(48), 20.0, 30.0};
  scene_.volumeShown = false;
  const Picture before = stage_.draw(scene_);
  const auto setAgain = [this](int width) {
    setSurface(renderer_, width, 10, 80.0, scene_.surface.values.data());
  };
  setAgain(-1);
  EXPECT_EQ(pendingError(), "The size of a surface must not be negative. ");
  EXPECT_TRUE(agree(frame(), before, exact));
  {
    GlSpy spy;
    frame();
    const int perFrame = spy.calls("glBufferData");
    frame();
    EXPECT_EQ(spy.calls("glBufferData"), 2 * perFrame);
    setAgain(12);
    frame();
    EXPECT_EQ(spy.calls("glBufferData"), 3 * perFrame + 3) << "positions, normals and indices";
    setAgain(12);
    spy.failNext("glBufferData", perFrame + 1);
    frame();
    EXPECT_EQ(pendingError().find("An OpenGL error in VolumeRenderer::surface changed occured: "), 0U);
    clearGLErrors();
    EXPECT_TRUE(agree(frame(), before, exact)) << "the next frame uploads it again";
  }
  stage_.restart();
  const HeightMap surface = std::exchange(scene_.surface, {});
  apply(scene_, renderer_);
  setSurfaceColormap(renderer_, scene_.surfaceColoring.colors.data(), 48);
  setSurfaceDepths(renderer_, 20.0, 30.0);
  setRenderElements(renderer_, 0, 1);
  EXPECT_TRUE(agree(frame(), before, exact)) << "the mesh outlives its OpenGL objects";
  setAgain(0);
  EXPECT_TRUE(showsBackground());
}

}  // namespace
}  // namespace oct::test
