// Surfaces of depths as triangles.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "data/volume.h"

namespace oct::app {

// In millimetres: x along the A-scans, y upwards, against depth, z along the B-scans; right-handed. The first A-scan of the
// first B-scan lies at 0, and depth 0 at height 0.
struct DepthMesh {
  struct Vertex {
    std::array<float, 3> position;
    std::array<float, 3> normal;  // of length 1, upwards
    float depth;                  // in the unit of the map
  };
  std::vector<Vertex> vertices;
  std::vector<std::array<std::uint32_t, 3>> triangles;  // counterclockwise, seen from above
};

// mm: between samples of depth, A-scans and B-scans. Where the map is not finite there is a hole.
DepthMesh mesh_of(const LateralMap& depths, const std::array<double, 3>& mm);

}  // namespace oct::app
