// The height map surface: holes and wrong sizes of its mesh, and when it is uploaded. Its places, normals,
// partition and winding show in the pictures.
#include <cmath>
#include <limits>

#include "support/gl_spy.h"
#include "volume/layout/surface_mesh.h"
#include "volume/volume_test.h"

namespace oct::test {
namespace {

HeightMap slope(int width, int height) {
  HeightMap map{width, height, 80.0, {}};
  for (int i = 0; i < width * height; ++i) map.values.push_back(20.0F + static_cast<float>(i % width));
  return map;
}

TEST(SurfaceMeshTest, SamplesThatAreNoNumbersLeaveAHoleAndAPointHasNoTriangles) {
  HeightMap map = slope(6, 5);
  map.values[2 * 6 + 3] = std::numeric_limits<float>::quiet_NaN();
  map.values[0] = std::numeric_limits<float>::infinity();
  const SurfaceMesh mesh = surface_mesh(6, 5, 80.0, map.values.data());
  EXPECT_EQ(mesh.triangles.size(), (5U * 4U - 4U - 1U) * 2U * 3U);
  for (const std::uint32_t index : mesh.triangles) {
    EXPECT_TRUE(std::isfinite(mesh.vertices[index].z));
    EXPECT_NEAR(glm::length(mesh.normals[index]), 1.0F, 1e-5F);
  }

  const float value = 1.0F;
  const SurfaceMesh point = surface_mesh(1, 1, 4.0, &value);
  EXPECT_EQ(point.vertices, (std::vector<glm::vec3>{{0.0F, 0.0F, -0.5F}}));
  EXPECT_TRUE(point.triangles.empty());
}

using SurfaceTest = VolumeTest;

TEST_F(SurfaceTest, IsUploadedOnceAndFailuresAreReported) {
  scene_.surface = slope(12, 10);
  scene_.surface_coloring = {opaque_colors(48), 20.0, 30.0};
  scene_.volume_shown = false;
  const Picture before = stage_.draw(scene_);
  const auto set_again = [this](int width) {
    setSurface(renderer_, width, 10, 80.0, scene_.surface.values.data());
  };
  set_again(-1);
  EXPECT_EQ(pending_error(), "The size of a surface must not be negative. ");
  EXPECT_TRUE(agree(frame(), before, exact));
  {
    GlSpy spy;
    frame();
    const int per_frame = spy.calls("glBufferData");
    frame();
    EXPECT_EQ(spy.calls("glBufferData"), 2 * per_frame);
    set_again(12);
    frame();
    EXPECT_EQ(spy.calls("glBufferData"), 3 * per_frame + 3) << "positions, normals and indices";
    set_again(12);
    spy.fail_next("glBufferData", per_frame + 1);
    frame();
    EXPECT_EQ(pending_error().find("An OpenGL error in VolumeRenderer::surface changed occured: "), 0U);
    clear_gl_errors();
    EXPECT_TRUE(agree(frame(), before, exact)) << "the next frame uploads it again";
  }
  stage_.restart();
  const HeightMap surface = std::exchange(scene_.surface, {});
  apply(scene_, renderer_);
  setSurfaceColormap(renderer_, scene_.surface_coloring.colors.data(), 48);
  setSurfaceDepths(renderer_, 20.0, 30.0);
  setRenderElements(renderer_, 0, 1);
  EXPECT_TRUE(agree(frame(), before, exact)) << "the mesh outlives its OpenGL objects";
  set_again(0);
  EXPECT_TRUE(shows_background());
}

}  // namespace
}  // namespace oct::test
