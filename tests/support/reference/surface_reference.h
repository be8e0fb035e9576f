// A height map surface on the CPU: its mesh and its light, from the formulas.
#pragma once

#include <array>

#include "support/reference/reference_camera.h"

namespace oct::test {

class ReferenceSurface {
 public:
  // Nothing, if the scene has no surface.
  ReferenceSurface(const VolumeScene& scene, const ReferenceCamera& camera);

  // What a view line, in eye coordinates, meets first.
  std::optional<glm::dvec3> color(const Line& line) const;

 private:
  struct Vertex {
    glm::dvec3 eye;
    glm::dvec3 normal;  // eye coordinates
    double depth;       // 0 to 1
  };
  using Triangle = std::array<std::size_t, 3>;  // counter-clockwise seen from smaller depth

  glm::dvec3 shaded(const Triangle& triangle, const glm::dvec3& weights, bool front) const;

  std::vector<std::uint32_t> colors_;
  std::vector<Vertex> vertices_;
  std::vector<Triangle> triangles_;
};

}  // namespace oct::test
