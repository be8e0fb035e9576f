#include <array>
#include <cmath>
#include <cstring>

#include "data/formats/output_file.h"
#include "data/meshes/append_bytes.h"
#include "data/meshes/mesh_writers.h"

namespace oct::app {
namespace {

// x stays, and B-scans run away from the viewer.
std::array<float, 3> upright(const std::array<float, 3>& place) {
  return {place[0], -place[2], place[1]};
}

std::array<float, 3> normal_of(const std::array<std::array<float, 3>, 3>& corners) {
  std::array<double, 3> first{}, second{};
  for (std::size_t i = 0; i < 3; ++i) {
    first[i] = double{corners[1][i]} - double{corners[0][i]};
    second[i] = double{corners[2][i]} - double{corners[0][i]};
  }
  const double x = first[1] * second[2] - first[2] * second[1];
  const double y = first[2] * second[0] - first[0] * second[2];
  const double z = first[0] * second[1] - first[1] * second[0];
  const double length = std::hypot(x, y, z);
  if (length == 0) return {0, 0, 1};
  return {static_cast<float>(x / length), static_cast<float>(y / length), static_cast<float>(z / length)};
}

}  // namespace

void write_stl(const std::filesystem::path& path, const DepthMesh& mesh) {
  OutputFile file(path);
  std::string head =
      "Surface in millimetres, z upwards";  // may not begin with the word that text files begin with
  head.resize(80, ' ');
  append_bytes(head, static_cast<std::uint32_t>(mesh.triangles.size()));
  file.write(head);
  std::string facet;
  for (const auto& triangle : mesh.triangles) {
    std::array<std::array<float, 3>, 3> corners{};
    for (std::size_t i = 0; i < 3; ++i) corners[i] = upright(mesh.vertices[triangle[i]].position);
    facet.clear();
    append_bytes(facet, normal_of(corners));
    append_bytes(facet, corners);
    append_bytes(facet, std::uint16_t{0});
    file.write(facet);
  }
  file.commit();
}

}  // namespace oct::app
