#include "volume/layout/filled_box.h"

#include <algorithm>
#include <cmath>

namespace oct {
namespace {

// The four edges along each axis: where they lie on the other two, in the order of the axes; 0 is the low
// end, 1 the high one.
constexpr std::array<std::array<glm::ivec2, 4>, 3> edges{{
    {{{1, 1}, {0, 1}, {0, 0}, {1, 0}}},
    {{{1, 1}, {0, 1}, {0, 0}, {1, 0}}},
    {{{1, 1}, {1, 0}, {0, 0}, {0, 1}}},
}};

// What rounding makes of the corners of a box in which a plane meets several edges.
constexpr float corner_reach = 1e-6F;

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

// Whether an earlier point is the same.
bool found_before(const std::vector<glm::vec3>& points, std::size_t index) {
  const auto end = points.begin() + static_cast<std::ptrdiff_t>(index);
  return std::find(points.begin(), end, *end) != end;
}

}  // namespace

FilledBox FilledBox::of(float fraction, int parts) {
  if (fraction >= 1.0F) return FilledBox(1.0F);
  return FilledBox(2.0F * fraction - 1.0F - (parts > 0 ? 1.0F / static_cast<float>(parts) : 0.0F));
}

bool FilledBox::contains(const glm::vec3& point) const {
  for (int axis = 0; axis < 3; ++axis) {
    const glm::vec2 reach = ends(axis);
    if (!(point[axis] >= reach.x && point[axis] <= reach.y)) return false;
  }
  return true;
}

CrossSection FilledBox::cross_section(int axis, float at) const {
  const int second = (axis + 1) % 3;
  const int third = (axis + 2) % 3;
  CrossSection corners;
  for (std::size_t i = 0; i < corners.size(); ++i) {
    corners[i][axis] = at;
    corners[i][second] = ends(second)[i == 1 || i == 2 ? 1 : 0];
    corners[i][third] = ends(third)[i >= 2 ? 1 : 0];
  }
  return corners;
}

std::vector<glm::vec3> FilledBox::intersections(const glm::vec4& plane) const {
  std::vector<glm::vec3> points;
  for (int axis = 0; axis < 3; ++axis) {
    const int second = axis == 0 ? 1 : 0;
    const int third = axis == 2 ? 1 : 2;
    for (const glm::ivec2& edge : edges[static_cast<std::size_t>(axis)]) {
      glm::vec3 point;
      point[second] = ends(second)[edge.x];
      point[third] = ends(third)[edge.y];
      // Not finite, and so not kept, where the plane runs along the axis.
      point[axis] = -(plane[second] * point[second] + plane[third] * point[third] + plane.w) / plane[axis];
      for (const float corner : {ends(axis).x, ends(axis).y}) {
        if (std::abs(point[axis] - corner) < corner_reach) point[axis] = corner;
      }
      if (contains(point)) points.push_back(point);
    }
  }
  return points;
}

bool FilledBox::on_one_face(const std::vector<glm::vec3>& points) const {
  for (int axis = 0; axis < 3; ++axis) {
    for (const float side : {ends(axis).x, ends(axis).y}) {
      const auto on_it = [&](const glm::vec3& point) { return point[axis] == side; };
      if (std::all_of(points.begin(), points.end(), on_it)) return true;
    }
  }
  return false;
}

bool FilledBox::on_common_face(const glm::vec3& p, const glm::vec3& q) const {
  for (int axis = 0; axis < 3; ++axis) {
    if (p[axis] == q[axis] && (p[axis] == ends(axis).x || p[axis] == ends(axis).y)) return true;
  }
  return false;
}

// Two points on one face of the box bound the cut there. The cut is convex: triangles from the first point
// cover it. What coincides is blended only once: a point that was found before has all its lines and triangles.
PlaneCut FilledBox::cut(const glm::vec4& plane) const {
  if (empty()) return {};
  const std::vector<glm::vec3> points = intersections(plane);
  PlaneCut result;
  if (on_one_face(points)) return {};
  for (std::size_t i = 0; i < points.size(); ++i) {
    if (found_before(points, i)) continue;
    for (std::size_t j = i + 1; j < points.size(); ++j) {
      if (found_before(points, j) || !on_common_face(points[i], points[j])) continue;
      result.border.insert(result.border.end(), {points[i], points[j]});
      if (i == 0) continue;
      result.face.insert(result.face.end(),
                         {points[0], points[i], points[j], points[0], points[j], points[i]});
    }
  }
  return result;
}

std::vector<glm::vec3> FilledBox::removed_faces(const glm::vec4& plane) const {
  std::vector<glm::vec3> triangles;
  for (int axis = 0; !empty() && axis < 3; ++axis) {
    for (const float side : {ends(axis).x, ends(axis).y}) {
      const std::vector<glm::vec3> part = removed_part(plane, cross_section(axis, side));
      for (std::size_t i = 2; i < part.size(); ++i)
        triangles.insert(triangles.end(), {part[0], part[i - 1], part[i]});
    }
  }
  return triangles;
}

}  // namespace oct
