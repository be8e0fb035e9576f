#include "data/meshes/depth_mesh.h"

#include <cmath>
#include <limits>

namespace oct::app {
namespace {

using Vector = std::array<double, 3>;

constexpr std::uint32_t none = std::numeric_limits<std::uint32_t>::max();

Vector way(const DepthMesh::Vertex& from, const DepthMesh::Vertex& to) {
  Vector result{};
  for (std::size_t i = 0; i < 3; ++i) result[i] = double{to.position[i]} - double{from.position[i]};
  return result;
}

Vector cross(const Vector& a, const Vector& b) {
  return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

// The sum of those of the triangles, which their length weighs by area.
void add_normals(DepthMesh& mesh) {
  std::vector<Vector> sums(mesh.vertices.size());
  for (const auto& [a, b, c] : mesh.triangles) {
    const Vector normal =
        cross(way(mesh.vertices[a], mesh.vertices[b]), way(mesh.vertices[a], mesh.vertices[c]));
    for (const std::uint32_t vertex : {a, b, c}) {
      for (std::size_t i = 0; i < 3; ++i) sums[vertex][i] += normal[i];
    }
  }
  for (std::size_t vertex = 0; vertex < sums.size(); ++vertex) {
    const auto& [x, y, z] = sums[vertex];
    const double length = std::hypot(x, y, z);
    if (length == 0) continue;  // of no triangle: upwards, as it was made
    for (std::size_t i = 0; i < 3; ++i) {
      mesh.vertices[vertex].normal[i] = static_cast<float>(sums[vertex][i] / length);
    }
  }
}

}  // namespace

DepthMesh mesh_of(const LateralMap& depths, const std::array<double, 3>& mm) {
  DepthMesh mesh;
  std::vector<std::uint32_t> places(depths.values.size(), none);
  for (std::size_t i = 0; i < places.size(); ++i) {
    const float depth = depths.values[i];
    if (!std::isfinite(depth)) continue;
    places[i] = static_cast<std::uint32_t>(mesh.vertices.size());
    mesh.vertices.push_back({{static_cast<float>(static_cast<double>(i % depths.ascans) * mm[1]),
                              static_cast<float>(-double{depth} * mm[0]),
                              static_cast<float>(static_cast<double>(i / depths.ascans) * mm[2])},
                             {0, 1, 0},
                             depth});
  }
  const auto add = [&](std::uint32_t a, std::uint32_t b, std::uint32_t c) {
    if (a != none && b != none && c != none) mesh.triangles.push_back({a, b, c});
  };
  for (std::size_t b = 1; b < depths.bscans; ++b) {
    for (std::size_t a = 1; a < depths.ascans; ++a) {
      const std::size_t at = b * depths.ascans + a;
      const std::uint32_t back_left = places[at - depths.ascans - 1], back_right = places[at - depths.ascans];
      const std::uint32_t front_left = places[at - 1], front_right = places[at];
      // Three corners give one triangle, whichever is missing.
      if (back_left == none || front_right == none) {
        add(back_left, front_left, back_right);
        add(back_right, front_left, front_right);
      } else {
        add(back_left, front_left, front_right);
        add(back_left, front_right, back_right);
      }
    }
  }
  add_normals(mesh);
  return mesh;
}

}  // namespace oct::app
