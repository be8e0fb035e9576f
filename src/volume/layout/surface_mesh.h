// The triangle mesh of a height map. No OpenGL.
#pragma once

#include <cstdint>
#include <vector>

#include <glm/glm.hpp>

namespace oct {

// Height map coordinates: columns along x and rows along y, both from -1 to 1; z is the depth, on the scale
// on which the volume box ends at -1 and 1. A height of 0 is the top of the box.
struct SurfaceMesh {
  std::vector<glm::vec3> vertices;       // row by row
  std::vector<glm::vec3> normals;        // of length 1, towards greater depth
  std::vector<std::uint32_t> triangles;  // three per triangle, counter-clockwise seen from smaller depth
};

// A depth of the data, of which `scale` is the whole box, on the mesh's scale.
inline double on_mesh_scale(double depth, double scale) {
  return 2.0 * depth / scale - 1.0;
}

// Values row by row. A sample that is not finite leaves a hole. Throws std::invalid_argument.
SurfaceMesh surface_mesh(int width, int height, double scale, const float* values);

}  // namespace oct
