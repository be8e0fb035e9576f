#include "support/reference/surface_reference.h"

#include <algorithm>

namespace oct::test {

ReferenceSurface::ReferenceSurface(const VolumeScene& scene, const ReferenceCamera& camera)
    : colors_(scene.surface_coloring.colors) {
  const HeightMap& map = scene.surface;
  const int last_column = map.width - 1;
  const int last_row = map.height - 1;
  const auto index = [&](int column, int row) { return static_cast<std::size_t>(row * map.width + column); };
  const auto on_box = [&](double depth) { return 2.0 * depth / map.scale - 1.0; };
  const auto depth = [&](int column, int row) { return on_box(map.values[index(column, row)]); };
  const auto slope = [&](int column, int row, int dx, int dy) {
    const int c0 = std::max(column - dx, 0), c1 = std::min(column + dx, last_column);
    const int r0 = std::max(row - dy, 0), r1 = std::min(row + dy, last_row);
    return (depth(c1, r1) - depth(c0, r0)) / (2.0 * (c1 - c0) / last_column + 2.0 * (r1 - r0) / last_row);
  };
  const double low = on_box(scene.surface_coloring.lower);
  const double high = on_box(scene.surface_coloring.upper);
  for (int row = 0; row < map.height; ++row) {
    for (int column = 0; column < map.width; ++column) {
      const double y = depth(column, row);
      const glm::dvec3 model(2.0 * column / last_column - 1.0, y, 2.0 * row / last_row - 1.0);
      const glm::dvec3 normal(-slope(column, row, 1, 0), 1.0, -slope(column, row, 0, 1));
      vertices_.push_back({camera.to_eye(model),
                           glm::normalize(glm::transpose(glm::inverse(camera.linear())) * normal),
                           glm::clamp(((y - low) / (high - low) + 1.0) / 2.0, 0.0, 1.0)});
    }
  }
  for (int row = 0; row < last_row; ++row) {
    for (int column = 0; column < last_column; ++column) {
      const auto a = index(column, row), b = a + 1, c = index(column, row + 1), d = c + 1;
      const auto step = [&](std::size_t from, std::size_t to) {
        return std::abs(map.values[from] - map.values[to]);
      };
      if (step(a, d) <= step(b, c)) {
        triangles_.insert(triangles_.end(), {{a, d, b}, {a, c, d}});
      } else {
        triangles_.insert(triangles_.end(), {{a, c, b}, {b, c, d}});
      }
    }
  }
}

std::optional<glm::dvec3> ReferenceSurface::color(const Line& line) const {
  std::optional<Meeting> first;
  const Triangle* met = nullptr;
  for (const Triangle& triangle : triangles_) {
    const auto [a, b, c] = triangle;
    const auto here = meeting(line, vertices_[a].eye, vertices_[b].eye, vertices_[c].eye);
    if (!here || (first && first->t <= here->t)) continue;
    first = here;
    met = &triangle;
  }
  if (!met) return {};
  const auto [a, b, c] = *met;
  const glm::dvec3 n = glm::cross(vertices_[b].eye - vertices_[a].eye, vertices_[c].eye - vertices_[a].eye);
  return shaded(*met, first->weights, glm::dot(n, line.direction) < 0.0);
}

// Light directions are those of the corners, as a vertex program hands them over.
glm::dvec3 ReferenceSurface::shaded(const Triangle& triangle, const glm::dvec3& weights, bool front) const {
  glm::dvec3 s(0.0), v(0.0), r(0.0), n(0.0);
  double depth = 0.0;
  for (int i = 0; i < 3; ++i) {
    const Vertex& corner = vertices_[triangle[static_cast<std::size_t>(i)]];
    const glm::dvec3 light = glm::normalize(glm::dvec3(10, 10, -5) - corner.eye);
    s += weights[i] * light;
    v += weights[i] * glm::normalize(-corner.eye);
    r += weights[i] * (-light - 2.0 * glm::dot(corner.normal, -light) * corner.normal);
    n += weights[i] * corner.normal;
    depth += weights[i] * corner.depth;
  }
  const glm::dvec3 base(mapped_color(colors_, 1.0 - depth));
  const double diffuse = std::max(glm::dot(s, front ? -n : n), 0.0);
  const double specular = diffuse > 0.0 ? 0.9 * std::pow(std::max(glm::dot(r, v), 0.0), 3.0) : 0.0;
  return 0.25 * base + 0.55 * base * diffuse + specular;
}

}  // namespace oct::test
