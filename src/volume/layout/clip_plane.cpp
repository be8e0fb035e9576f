#include "volume/layout/clip_plane.h"

#include <algorithm>
#include <array>
#include <cmath>

#include "volume/layout/box_view.h"

namespace oct {
namespace {

// The four edges along each axis: the other two coordinates, in the order of the axes.
constexpr std::array<std::array<glm::vec2, 4>, 3> edges{{
    {{{1, 1}, {-1, 1}, {-1, -1}, {1, -1}}},
    {{{1, 1}, {-1, 1}, {-1, -1}, {1, -1}}},
    {{{1, 1}, {1, -1}, {-1, -1}, {-1, 1}}},
}};

bool on_common_face(const glm::vec3& p, const glm::vec3& q) {
  for (int axis = 0; axis < 3; ++axis) {
    if (p[axis] == q[axis] && std::abs(p[axis]) == 1.0F) return true;
  }
  return false;
}

float distance(const glm::vec4& plane, const glm::vec3& point) {
  return glm::dot(plane, glm::vec4(point, 1.0F));
}

// The part of a convex polygon that the plane removes.
std::vector<glm::vec3> removed_part(const glm::vec4& plane, const CrossSection& polygon) {
  std::vector<glm::vec3> part;
  for (std::size_t i = 0; i < polygon.size(); ++i) {
    const glm::vec3& from = polygon[i];
    const glm::vec3& to = polygon[(i + 1) % polygon.size()];
    const float start = distance(plane, from);
    const float end = distance(plane, to);
    if (start < 0.0F) part.push_back(from);
    if ((start < 0.0F) != (end < 0.0F)) part.push_back(glm::mix(from, to, start / (start - end)));
  }
  return part;
}

}  // namespace

std::vector<glm::vec3> box_intersections(const glm::vec4& plane) {
  std::vector<glm::vec3> points;
  for (int axis = 0; axis < 3; ++axis) {
    const int second = axis == 0 ? 1 : 0;
    const int third = axis == 2 ? 1 : 2;
    for (const glm::vec2& edge : edges[static_cast<std::size_t>(axis)]) {
      // Not finite, and so not kept, where the plane runs along the axis.
      const float solution = -(plane[second] * edge.x + plane[third] * edge.y + plane.w) / plane[axis];
      if (!(std::abs(solution) <= 1.0F)) continue;
      glm::vec3 point;
      point[axis] = solution;
      point[second] = edge.x;
      point[third] = edge.y;
      points.push_back(point);
    }
  }
  return points;
}

std::vector<glm::vec3> removed_faces(const glm::vec4& plane) {
  std::vector<glm::vec3> triangles;
  for (int axis = 0; axis < 3; ++axis) {
    for (const float side : {-1.0F, 1.0F}) {
      const std::vector<glm::vec3> part = removed_part(plane, cross_section(axis, side));
      for (std::size_t i = 2; i < part.size(); ++i)
        triangles.insert(triangles.end(), {part[0], part[i - 1], part[i]});
    }
  }
  return triangles;
}

void ClipPlane::update(const ClipPlaneSettings& settings, const View& view) {
  settings_ = settings;
  intersections_.clear();
  border_.clear();
  cut_face_.clear();
  if (!settings_.enabled) return;
  orient(view);
  intersections_ = box_intersections(plane_);
  connect_intersections();
}

void ClipPlane::orient(const View& view) {
  if (!settings_.fixed) {
    const float x = radians_of(view.angle_x);
    const float y = radians_of(view.angle_y);
    plane_ = {std::sin(y) * std::cos(x), std::sin(x), -std::cos(y) * std::cos(x), 0.0F};
  }
  // The sum is the plane's reach over the box; 0.99 of it keeps the plane inside at either end.
  const double reach = std::abs(static_cast<double>(plane_.x)) + std::abs(static_cast<double>(plane_.y)) +
                       std::abs(static_cast<double>(plane_.z));
  plane_.w = static_cast<float>((2.0 * static_cast<double>(settings_.value) - 1.0) * 0.99 * reach);
}

// Two points on one face of the box bound the cut there. The cut is convex: triangles
// from the first point cover it.
void ClipPlane::connect_intersections() {
  for (std::size_t i = 0; i < intersections_.size(); ++i) {
    for (std::size_t j = 0; j < intersections_.size(); ++j) {
      if (i == j || !on_common_face(intersections_[i], intersections_[j])) continue;
      border_.insert(border_.end(), {intersections_[i], intersections_[j]});
      // A plane through a corner of the box meets several edges there. Lines between such points
      // once more do no harm, but triangles do: rays through a translucent volume would be
      // blended twice where two coincide.
      if (i == 0 || j == 0 || found_before(i) || found_before(j)) continue;
      cut_face_.insert(cut_face_.end(), {intersections_[0], intersections_[i], intersections_[j]});
    }
  }
}

bool ClipPlane::found_before(std::size_t index) const {
  const auto end = intersections_.begin() + static_cast<std::ptrdiff_t>(index);
  return std::find(intersections_.begin(), end, *end) != end;
}

}  // namespace oct
