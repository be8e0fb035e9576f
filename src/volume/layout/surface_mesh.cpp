#include "volume/layout/surface_mesh.h"

#include <array>
#include <cmath>
#include <limits>
#include <stdexcept>

namespace oct {
namespace {

bool finite(const glm::vec3& point) {
  return std::isfinite(point.z);
}

// -1 at the first of `count` samples, 1 at the last; a single one lies in the middle.
float lateral(int index, int count) {
  if (count == 1) return 0.0F;
  return static_cast<float>(2 * index - (count - 1)) / static_cast<float>(count - 1);
}

class Grid {
 public:
  Grid(int width, int height, const std::vector<glm::vec3>& vertices)
      : width_(width), height_(height), vertices_(vertices) {}

  std::uint32_t index(int column, int row) const {
    return static_cast<std::uint32_t>(row) * static_cast<std::uint32_t>(width_) +
           static_cast<std::uint32_t>(column);
  }
  const glm::vec3& at(int column, int row) const { return vertices_[index(column, row)]; }

  // The slopes of the depth between a vertex's neighbours in its row and in its column give the normal. At a
  // rim, or beside a hole, the vertex itself takes the missing neighbour's place.
  glm::vec3 normal(int column, int row) const {
    const float along_x =
        slope(neighbour(column - 1, row, column, row), neighbour(column + 1, row, column, row), 0);
    const float along_y =
        slope(neighbour(column, row - 1, column, row), neighbour(column, row + 1, column, row), 1);
    return glm::normalize(glm::vec3(-along_x, -along_y, 1.0F));
  }

 private:
  const glm::vec3& neighbour(int column, int row, int own_column, int own_row) const {
    const bool inside = column >= 0 && column < width_ && row >= 0 && row < height_;
    if (inside && finite(at(column, row))) return at(column, row);
    return at(own_column, own_row);
  }

  static float slope(const glm::vec3& from, const glm::vec3& to, int axis) {
    const float run = to[axis] - from[axis];
    return run == 0.0F ? 0.0F : (to.z - from.z) / run;
  }

  int width_;
  int height_;
  const std::vector<glm::vec3>& vertices_;
};

// A cell's two triangles, parted along the diagonal whose ends are closer in depth: a step that runs
// across the cells is then a line and no row of teeth.
void add_cell(const Grid& grid, int column, int row, std::vector<std::uint32_t>& triangles) {
  const auto depth_step = [&](int from_column, int from_row, int to_column, int to_row) {
    return std::abs(grid.at(from_column, from_row).z - grid.at(to_column, to_row).z);
  };
  const std::uint32_t near = grid.index(column, row);
  const std::uint32_t right = grid.index(column + 1, row);
  const std::uint32_t up = grid.index(column, row + 1);
  const std::uint32_t far = grid.index(column + 1, row + 1);
  const bool main_diagonal =
      depth_step(column, row, column + 1, row + 1) <= depth_step(column + 1, row, column, row + 1);
  if (main_diagonal) {
    triangles.insert(triangles.end(), {near, far, right, near, up, far});
  } else {
    triangles.insert(triangles.end(), {near, up, right, right, up, far});
  }
}

void check(int width, int height, double scale, const float* values) {
  if (width < 0 || height < 0) throw std::invalid_argument("The size of a surface must not be negative. ");
  if (width == 0 || height == 0) return;
  if (!values) throw std::invalid_argument("Surface data must not be null. ");
  if (!std::isfinite(scale) || scale == 0.0) {
    throw std::invalid_argument("The scale of a surface must be a number other than zero. ");
  }
  if (static_cast<std::int64_t>(width) * height > std::numeric_limits<std::int32_t>::max()) {
    throw std::invalid_argument("The surface has too many samples. ");
  }
}

}  // namespace

SurfaceMesh surface_mesh(int width, int height, double scale, const float* values) {
  check(width, height, scale, values);
  SurfaceMesh mesh;
  const auto samples = static_cast<std::size_t>(width) * static_cast<std::size_t>(height);
  mesh.vertices.reserve(samples);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      const double depth = on_mesh_scale(static_cast<double>(values[mesh.vertices.size()]), scale);
      mesh.vertices.emplace_back(lateral(column, width), lateral(row, height), static_cast<float>(depth));
    }
  }

  const Grid grid(width, height, mesh.vertices);
  mesh.normals.reserve(samples);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) mesh.normals.push_back(grid.normal(column, row));
  }
  for (int row = 0; row + 1 < height; ++row) {
    for (int column = 0; column + 1 < width; ++column) {
      const std::array<glm::vec3, 4> cell{grid.at(column, row), grid.at(column + 1, row),
                                          grid.at(column, row + 1), grid.at(column + 1, row + 1)};
      bool whole = true;
      for (const glm::vec3& vertex : cell) whole = whole && finite(vertex);
      if (whole) add_cell(grid, column, row, mesh.triangles);
    }
  }
  return mesh;
}

}  // namespace oct
