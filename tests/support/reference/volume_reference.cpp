#include "support/reference/volume_reference.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>
#include <optional>

#include "support/reference/reference_camera.h"

namespace oct::test {
namespace {

// What lies around the voxels: the outermost ones go on, zeros, or the first axis begins anew.
enum class Surroundings { edge, zeros, first_axis_repeats };

// Linear between voxels at a place in texture coordinates.
double voxel_at(const Volume& volume, const glm::dvec3& texture, Surroundings surroundings) {
  const glm::ivec3 size(volume.width, volume.height, volume.depth);
  const glm::dvec3 position = texture * glm::dvec3(size) - 0.5;
  const glm::dvec3 below = glm::floor(position);
  const glm::dvec3 weight = position - below;
  double sum = 0.0;
  for (int corner = 0; corner < 8; ++corner) {
    const glm::ivec3 step(corner & 1, corner >> 1 & 1, corner >> 2);
    glm::ivec3 index = glm::ivec3(below) + step;
    if (surroundings == Surroundings::first_axis_repeats) index.x = (index.x % size.x + size.x) % size.x;
    const glm::ivec3 inside = glm::clamp(index, glm::ivec3(0), size - 1);
    if (surroundings == Surroundings::zeros && inside != index) continue;
    index = inside;
    const glm::dvec3 share = glm::mix(1.0 - weight, weight, glm::bvec3(step));
    sum += share.x * share.y * share.z * volume.at(index.x, index.y, index.z);
  }
  return static_cast<float>(sum);  // an even volume stays exactly even
}

double normalised(const Coloring& coloring, double value) {
  return (value - coloring.lower) / (coloring.upper - coloring.lower);
}

glm::dvec4 mapped(const Coloring& coloring, double value) {
  return mapped_color(coloring.colors, normalised(coloring, value));
}

// One ray in texture space.
class Ray {
 public:
  // From a place of the box to another, in model coordinates. It takes no sample beyond a surface, and its first one
  // a part of a step behind the start.
  Ray(const VolumeScene& scene, const glm::dvec3& from, const glm::dvec3& to, bool to_surface, double offset)
      : scene_(scene),
        volume_(scene.content == 1 ? scene.overlay : scene.volume),
        coloring_(scene.content == 1 ? scene.overlay_coloring : scene.coloring) {
    const glm::dvec3 way = 0.5 * (to - from);
    const double beyond = to_surface ? 1.7320508 / scene.slices : 0.0;
    const glm::dvec3 step = way * (1.0 / glm::length(way) * 1.7320508 / scene.slices);
    const glm::dvec3 front = 0.5 * from + 0.5;
    const double end = glm::length(way) - beyond;
    glm::dvec3 place = front;
    if (offset > 0.0) place += std::min(offset, std::max(end, 0.0) / glm::length(step)) * step;
    sight_ = step * extent_;
    for (int i = 0; i <= scene.slices && !reaches_end_; ++i) {
      places_.push_back(place);
      reaches_end_ = glm::length(place - front) >= end;
      place = place + step;
    }
  }

  // The sample that a pixel shows.
  struct Shown {
    glm::dvec3 place;  // in the box, from 0 to 1
    double value;
    double opacity;  // of the ray
  };
  Shown shown() const {
    const double opacity = glm::clamp(color().a, 0.0, 1.0);
    if (scene_.mode == 1 || scene_.mode == 2) {
      const auto count = std::min(places_.size(), static_cast<std::size_t>(scene_.slices));
      return {places_[brightest(volume_, count)], value(volume_, places_[brightest(volume_, count)]),
              opacity};
    }
    const bool overlaid = scene_.content == 2 && scene_.mode == 0;
    glm::dvec4 total(0.0);
    for (const glm::dvec3& place : places_) {
      if (!(total.a > (overlaid ? 0.99 : 0.9))) add(total, place);
    }
    if (overlaid) {
      const glm::dvec3 place = places_[brightest(scene_.overlay, places_.size())];
      const double overlay = value(scene_.overlay, place);
      if (total.a == 0.0 || normalised(scene_.overlay_coloring, overlay) > 0.5)
        return {place, overlay, opacity};
    }
    const double all = overlaid || total.a <= 0.9 ? total.a : 1.0;
    total = glm::dvec4(0.0);
    for (const glm::dvec3& place : places_) {
      add(total, place);
      if (total.a >= 0.5 * all) return {place, value(volume_, place), opacity};
    }
    return {places_.back(), value(volume_, places_.back()), opacity};
  }
  double step() const { return glm::length(sight_ / extent_); }

  glm::dvec4 color() const {
    if (scene_.mode == 1) return mapped(coloring_, maximum());
    if (scene_.mode == 2) return mapped(coloring_, mean());
    return scene_.content == 2 && scene_.mode == 0 ? composite_with_overlay() : composite();
  }

 private:
  std::size_t brightest(const Volume& volume, std::size_t count) const {
    std::size_t found = 0;
    for (std::size_t i = 1; i < count; ++i) {
      if (value(volume, places_[i]) > value(volume, places_[found])) found = i;
    }
    return found;
  }

  double value(const Volume& volume, const glm::dvec3& place) const {
    return voxel_at(volume, {place.y, place.x, place.z},
                    scene_.border ? Surroundings::zeros : Surroundings::edge);
  }

  void add(glm::dvec4& total, const glm::dvec3& place) const {
    const double value = this->value(volume_, place);
    if (!(value > coloring_.lower)) return;
    glm::dvec4 color = mapped(coloring_, value);
    if (scene_.opacity_length > 0.0)
      color.a = 1.0 - std::pow(1.0 - color.a, glm::length(sight_) / scene_.opacity_length);
    if (scene_.mode == 3) modulate(color, place);
    if (scene_.lighting != std::array<double, 3>{}) light(color, place);
    if (!(color.a > 0.0)) return;
    const double alpha = color.a * (1.0 - total.a) + total.a;
    const glm::dvec3 sum = glm::dvec3(color) * color.a * (1.0 - total.a) + glm::dvec3(total) * total.a;
    total = glm::dvec4(sum / alpha, alpha);
  }

  void modulate(glm::dvec4& color, const glm::dvec3& place) const {
    const Coloring& coloring = scene_.secondary_coloring;
    const double slice = (scene_.secondary_index + 0.5) / scene_.secondary.width;
    const double secondary =
        voxel_at(scene_.secondary, {slice, place.x, place.z}, Surroundings::first_axis_repeats);
    const double surface = std::clamp(normalised(coloring, secondary), 0.0, 1.0);
    color *= glm::dvec4((1.0 + surface) * glm::dvec3(mapped_color(coloring.colors, surface)), 1.0);
  }

  void light(glm::dvec4& color, const glm::dvec3& place) const {
    const glm::dvec3 voxel = 1.0 / glm::dvec3(volume_.height, volume_.width, volume_.depth);
    glm::dvec3 change;
    for (int axis = 0; axis < 3; ++axis) {
      glm::dvec3 way(0.0);
      way[axis] = voxel[axis];
      change[axis] = (value(volume_, place + way) - value(volume_, place - way)) / 2.0;
    }
    const double steepness = glm::length(change) / std::abs(coloring_.upper - coloring_.lower);
    if (!(steepness > 0.1 && std::isfinite(steepness))) return;
    const glm::dvec3 normal = glm::normalize(change / (voxel * extent_));
    const double cosine = std::abs(glm::dot(normal, glm::normalize(sight_)));
    const auto& [ambient, diffuse, specular] = scene_.lighting;
    const glm::dvec3 lit =
        glm::dvec3(color) * (ambient + diffuse * cosine) + specular * std::pow(cosine, 32.0);
    color = glm::dvec4(glm::mix(glm::dvec3(color), lit, glm::smoothstep(0.1, 0.3, steepness)), color.a);
  }

  glm::dvec4 composite() const {
    glm::dvec4 total(0.0);
    for (const glm::dvec3& place : places_) {
      add(total, place);
      if (total.a > 0.9) return {glm::dvec3(total), 1.0};
    }
    return total;
  }

  glm::dvec4 composite_with_overlay() const {
    glm::dvec4 total(0.0);
    double overlay = -1e6;
    for (const glm::dvec3& place : places_) {
      if (!(total.a > 0.99)) add(total, place);
      overlay = std::max(overlay, normalised(scene_.overlay_coloring, value(scene_.overlay, place)));
    }
    const glm::dvec4 over(glm::dvec3(mapped_color(scene_.overlay_coloring.colors, overlay)), overlay);
    return glm::mix(total, over, overlay);
  }

  // Of as many places as there are slices.
  double maximum() const {
    double largest = value(volume_, places_.front());
    const auto count = std::min(places_.size(), static_cast<std::size_t>(scene_.slices));
    for (std::size_t i = 0; i < count && (i == 0 || !(largest > coloring_.upper)); ++i)
      largest = std::max(largest, value(volume_, places_[i]));
    return largest;
  }

  // The front counts twice in the sum and the end not in the divisor.
  double mean() const {
    const auto count = std::min(places_.size(), static_cast<std::size_t>(scene_.slices));
    double sum = value(volume_, places_.front());
    for (std::size_t i = 0; i < count; ++i) sum += value(volume_, places_[i]);
    const bool ended = reaches_end_ && count == places_.size();
    return sum / static_cast<double>(ended ? std::max<std::size_t>(count - 1, 1) : count);
  }

  const VolumeScene& scene_;
  const Volume& volume_;
  const Coloring& coloring_;
  const glm::dvec3 extent_{scene_.range[1], scene_.range[0], scene_.range[2]};
  std::vector<glm::dvec3> places_;  // where it takes samples
  glm::dvec3 sight_{0.0};           // a step, in millimetres
  bool reaches_end_ = false;
};

using Segment = std::pair<glm::dvec3, glm::dvec3>;  // model coordinates

std::vector<Segment> box_edges() {
  const auto corner = [](int i) { return glm::dvec3(i & 1 ? 1 : -1, i & 2 ? 1 : -1, i & 4 ? 1 : -1); };
  std::vector<Segment> edges;
  for (int i = 0; i < 8; ++i) {
    for (const int bit : {1, 2, 4}) {
      if ((i & bit) == 0) edges.emplace_back(corner(i), corner(i | bit));
    }
  }
  return edges;
}

// The largest of the coordinates but those along an axis: at most 1 on the box's cross-section.
double reach(const glm::dvec3& point, int axis) {
  return std::max(std::abs(point[(axis + 1) % 3]), std::abs(point[(axis + 2) % 3]));
}

struct Plane {
  glm::dvec3 normal;
  double distance;

  double above(const glm::dvec3& point) const { return glm::dot(normal, point) + distance; }
  double meets(const Line& line) const { return -above(line.origin) / glm::dot(normal, line.direction); }
};

std::optional<Plane> clip_plane(const VolumeScene& scene) {
  if (!scene.clip || scene.sectional) return {};
  const double ax = glm::radians(scene.clip_fixed ? scene.fixed_angle_x : scene.angle_x);
  const double ay = glm::radians(scene.clip_fixed ? scene.fixed_angle_y : scene.angle_y);
  const glm::dvec3 n(std::sin(ay) * std::cos(ax), std::sin(ax), -std::cos(ay) * std::cos(ax));
  const double corner = std::abs(n.x) + std::abs(n.y) + std::abs(n.z);
  return Plane{n, (2.0 * scene.clip_value - 1.0) * 0.99 * corner};
}

// Nothing is filled at -1 and less.
double filled_end(const VolumeScene& scene) {
  if (scene.slices_uploaded < 0 || scene.slices_uploaded == scene.volume.depth) return 1.0;
  const double n = scene.volume.depth;
  return 2.0 * scene.slices_uploaded / n - 1.0 - 1.0 / n;
}

// A height map surface: its mesh and its light.
class ReferenceSurface {
 public:
  // Nothing, if the scene has no surface.
  ReferenceSurface(const VolumeScene& scene, const ReferenceCamera& camera);

  // Where on a view line, in eye coordinates, something is seen, and its colour.
  struct Hit {
    double t;
    glm::dvec3 color;
    bool of_slice = false;
  };
  // What the line meets first of the places that `kept` accepts.
  template <class Kept>
  std::optional<Hit> hit(const Line& line, Kept&& kept) const;

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

template <class Kept>
std::optional<ReferenceSurface::Hit> ReferenceSurface::hit(const Line& line, Kept&& kept) const {
  std::optional<Hit> first;
  for (const Triangle& triangle : triangles_) {
    const glm::dvec3 a = vertices_[triangle[0]].eye;
    const glm::dvec3 to_b = vertices_[triangle[1]].eye - a;
    const glm::dvec3 to_c = vertices_[triangle[2]].eye - a;
    const glm::dvec3 n = glm::cross(to_b, to_c);
    const double t = glm::dot(n, a - line.origin) / glm::dot(n, line.direction);
    const glm::dvec3 p = line.at(t) - a;
    const double second = glm::dot(glm::cross(p, to_c), n) / glm::dot(n, n);
    const double third = glm::dot(glm::cross(to_b, p), n) / glm::dot(n, n);
    if (!(second >= 0.0 && third >= 0.0 && second + third <= 1.0 && kept(t))) continue;
    if (first && t >= first->t) continue;
    const glm::dvec3 weights(1.0 - second - third, second, third);
    // Seen from smaller depth: the line runs the way of the normals, however the box is mirrored.
    const double way = glm::dot(n, line.direction) * glm::dot(n, vertices_[triangle[0]].normal);
    first = Hit{t, shaded(triangle, weights, way > 0.0)};
  }
  return first;
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

class Layers {
 public:
  explicit Layers(const VolumeScene& scene)
      : scene_(scene), camera_(scene), surface_(scene, camera_), plane_(clip_plane(scene)) {}

  // What is seen in a pixel, the farthest first, with its opacity. What is opaque hides all beyond it, glass
  // and the ray's end alike.
  std::vector<glm::dvec4> at(int column, int row) const {
    const Line line = camera_.model_line(column, row);
    const std::optional<Hit> opaque = first_opaque(line, camera_.line(column, row));
    const double open_to = opaque ? opaque->t : std::numeric_limits<double>::infinity();
    std::vector<glm::dvec4> found;
    if (opaque) found.emplace_back(opaque->color, 1.0);
    const auto glass = scene_.box ? passage(line, 1.0) : std::optional<glm::dvec2>();
    if (glass && glass->y < open_to - touching) add_pane(found, far_pane);
    if (scene_.volume_shown && !scene_.sectional) {
      const bool ghost_in_front = plane_ && plane_->above(line.origin) < 0.0;
      if (!ghost_in_front) add_ghost(found, line, open_to);
      add_ray(found, line, open_to, start_offset(column, row));
      if (ghost_in_front) add_ghost(found, line, open_to);
    }
    if (glass && glass->x > in_view() && glass->x < open_to + touching) add_pane(found, near_pane);
    return found;
  }

  ReferencePick pick(int column, int row) const {
    const Line line = camera_.model_line(column, row);
    const std::optional<Hit> opaque = first_opaque(line, camera_.line(column, row));
    const double open_to = opaque ? opaque->t : std::numeric_limits<double>::infinity();
    const bool rays = scene_.volume_shown && !scene_.sectional;
    const auto ray = rays ? ray_of(line, open_to, start_offset(column, row)) : std::optional<Ray>();
    ReferencePick result;
    const glm::dvec3 size(scene_.volume.height, scene_.volume.width, scene_.volume.depth);
    const auto found = [&](int kind, const glm::dvec3& place, double value) {
      const glm::dvec3 voxel = place * size - 0.5;
      result.kind = kind;
      result.voxel = {voxel.y, voxel.x, voxel.z};
      result.value = value;
      return result;
    };
    if (ray) {
      const Ray::Shown shown = ray->shown();
      const double needed = opaque ? 0.5 : 0.5 / 255.0;
      result.step = ray->step() * std::max({size.x, size.y, size.z});
      result.doubtful = std::abs(shown.opacity - needed) < 0.02 * needed;
      if (shown.opacity >= needed) return found(1, shown.place, shown.value);
    }
    if (!opaque) return result;
    const glm::dvec3 place = 0.5 * line.at(opaque->t) + 0.5;
    if (!opaque->of_slice) return found(3, place, place.y * scene_.surface.scale);
    found(2, place, 0.0);
    result.value = reference_value(scene_.volume, result.voxel);
    if (scene_.content != 2) return result;
    const double overlay = reference_value(scene_.overlay, result.voxel);
    if (mapped(scene_.overlay_coloring, overlay).a > 0.5) result.value = overlay;
    return result;
  }

  std::vector<std::pair<glm::dvec2, glm::dvec2>> lines() const {
    std::vector<Segment> segments = scene_.edges ? box_edges() : std::vector<Segment>{};
    if (plane_) add_rim(segments);
    for (std::size_t axis = 0; axis < 3 && scene_.sectional; ++axis) {
      const Slice& slice = scene_.sections[axis];
      for (auto [from, to] : box_edges()) {
        const int i = static_cast<int>(axis);
        if (!slice.shown || from[i] > 0.0 || to[i] > 0.0) continue;
        from[i] = to[i] = 2.0 * slice.position - 1.0;
        if (i == 2 && from.z > end_) continue;
        from.z = std::min(from.z, end_);
        to.z = std::min(to.z, end_);
        segments.emplace_back(from, to);
      }
    }
    std::vector<std::pair<glm::dvec2, glm::dvec2>> on_screen;
    for (const auto& [from, to] : segments)
      on_screen.emplace_back(camera_.to_window(from), camera_.to_window(to));
    return on_screen;
  }

 private:
  static constexpr double far_pane = 0.1;
  static constexpr double near_pane = 0.03;
  static constexpr double ghost_pane = 0.1;
  static constexpr double touching = 1e-6;  // what lies on a face of the box is seen before it, not behind it

  using Hit = ReferenceSurface::Hit;

  void add_pane(std::vector<glm::dvec4>& found, double opacity) const {
    found.emplace_back(opaque_color(scene_.foreground), opacity);
  }

  // Where the viewer's sight begins: just before the eye.
  double in_view() const { return scene_.perspective ? 0.01 : -std::numeric_limits<double>::infinity(); }

  // Where a line enters and leaves the box up to an end along z. Nothing where all of it lies behind the eye.
  std::optional<glm::dvec2> passage(const Line& line, double end) const {
    if (end <= -1.0) return {};
    const glm::dvec3 low = (-1.0 - line.origin) / line.direction;
    const glm::dvec3 high = (glm::dvec3(1.0, 1.0, end) - line.origin) / line.direction;
    const glm::dvec3 in = glm::min(low, high);
    const glm::dvec3 out = glm::max(low, high);
    const glm::dvec2 passes(std::max({in.x, in.y, in.z}), std::min({out.x, out.y, out.z}));
    if (passes.x < passes.y && passes.y > in_view()) return passes;
    return {};
  }

  // Of a step: the additive sequence of the plastic number, in two dimensions.
  double start_offset(int column, int row) const {
    constexpr double plastic = 1.3247179572447460260;
    return scene_.jitter ? glm::fract(column / plastic + row / (plastic * plastic)) : 0.0;
  }

  void add_ray(std::vector<glm::dvec4>& found, const Line& line, double open_to, double offset) const {
    if (const auto ray = ray_of(line, open_to, offset)) found.push_back(ray->color());
  }

  std::optional<Ray> ray_of(const Line& line, double open_to, double offset) const {
    const auto passes = passage(line, end_);
    if (!passes) return {};
    double enter = std::max(passes->x, in_view());
    double leave = passes->y;
    if (plane_) {
      const bool enters_kept = plane_->above(line.at(enter)) >= 0.0;
      const bool leaves_kept = plane_->above(line.at(leave)) >= 0.0;
      if (!enters_kept && (!leaves_kept || scene_.clip_open)) return {};
      if (!enters_kept) enter = plane_->meets(line);
      if (!leaves_kept) leave = plane_->meets(line);
    }
    const bool to_surface = open_to < leave;
    if (to_surface) leave = open_to;
    if (!(enter < leave)) return {};
    return Ray(scene_, line.at(enter), line.at(leave), to_surface, offset);
  }

  // The faces of what the plane cuts off.
  void add_ghost(std::vector<glm::dvec4>& found, const Line& line, double open_to) const {
    if (!plane_ || !scene_.removed_segment || end_ <= -1.0) return;
    for (int axis = 0; axis < 3; ++axis) {
      for (const double side : {-1.0, axis == 2 ? end_ : 1.0}) {
        const double t = (side - line.origin[axis]) / line.direction[axis];
        const glm::dvec3 point = line.at(t);
        if (t > in_view() && t < open_to && in_filled(point, axis) && plane_->above(point) < 0.0)
          add_pane(found, ghost_pane);
      }
    }
  }

  // Whether a point of a plane across an axis lies within the filled part of the box.
  bool in_filled(const glm::dvec3& point, int axis) const {
    return reach(point, axis) <= 1.0 && (axis == 2 || point.z <= end_);
  }

  std::optional<Hit> first_opaque(const Line& line, const Line& eye_line) const {
    std::optional<Hit> first = surface_.hit(
        eye_line, [&](double t) { return t > in_view() && (!plane_ || plane_->above(line.at(t)) >= 0.0); });
    for (int axis = 0; axis < 3 && scene_.volume_shown && scene_.sectional; ++axis) {
      const Slice& slice = scene_.sections[static_cast<std::size_t>(axis)];
      const double place = 2.0 * slice.position - 1.0;
      const double t = (place - line.origin[axis]) / line.direction[axis];
      const bool there = slice.shown && (axis != 2 || place <= end_) && in_filled(line.at(t), axis);
      if (there && t > in_view() && !(first && first->t < t)) first = Hit{t, slice_color(line.at(t)), true};
    }
    return first;
  }

  glm::dvec3 slice_color(const glm::dvec3& point) const {
    const auto color = [&, place = 0.5 * glm::dvec3(point.y, point.x, point.z) + 0.5](
                           const Volume& volume, const Coloring& coloring) {
      return mapped(coloring, voxel_at(volume, place, Surroundings::edge));
    };
    const glm::dvec4 base = color(scene_.volume, scene_.coloring);
    const bool overlaid = scene_.content == 2;
    const glm::dvec4 over = overlaid ? color(scene_.overlay, scene_.overlay_coloring) : glm::dvec4(0.0);
    return glm::mix(base, over, over.a);
  }

  // The cut's polygon: points on edges of the box, joined where they lie on one face.
  void add_rim(std::vector<Segment>& segments) const {
    std::vector<glm::dvec3> points;
    for (auto [from, to] : box_edges()) {
      from.z = std::min(from.z, end_);
      to.z = std::min(to.z, end_);
      const double a = plane_->above(from);
      const double b = plane_->above(to);
      if (a * b <= 0.0 && a != b) points.push_back(glm::mix(from, to, a / (a - b)));
    }
    for (std::size_t i = 0; i < points.size(); ++i) {
      for (std::size_t j = 0; j < i; ++j) {
        const glm::dvec3 sum = glm::abs(points[i] + points[j]);
        const bool on_side = std::max({sum.x, sum.y, sum.z}) > 2.0 - 1e-9;
        const bool on_end = std::min(points[i].z, points[j].z) > end_ - 1e-9;
        if (on_side || on_end) segments.emplace_back(points[i], points[j]);
      }
    }
  }

  const VolumeScene& scene_;
  const ReferenceCamera camera_;
  const ReferenceSurface surface_;
  const std::optional<Plane> plane_;
  const double end_ = filled_end(scene_);  // of the filled part of the box, along z
};

double distance_to_segment(const glm::dvec2& point, const glm::dvec2& from, const glm::dvec2& to) {
  const glm::dvec2 along = to - from;
  const double length = glm::dot(along, along);
  const double t = length > 0.0 ? glm::clamp(glm::dot(point - from, along) / length, 0.0, 1.0) : 0.0;
  return glm::length(point - from - t * along);
}

double distance(const Picture& a, const Picture& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.bytes.size(); ++i) sum += std::abs(int{a.bytes[i]} - int{b.bytes[i]});
  return sum;
}

}  // namespace

ReferencePick reference_pick(const VolumeScene& scene, int column, int row) {
  return Layers(scene).pick(column, row);
}

double reference_value(const Volume& volume, const glm::dvec3& voxel) {
  return voxel_at(volume, (voxel + 0.5) / glm::dvec3(volume.width, volume.height, volume.depth),
                  Surroundings::edge);
}

ReferencePicture reference_picture(const VolumeScene& scene) {
  constexpr double line_reach = 1.6;  // pixels
  const Picture empty(scene.viewport_width, scene.viewport_height);
  const Layers layers(scene);
  ReferencePicture result{empty, empty, {}, layers.lines()};
  empty.for_each([&](int column, int row) {
    glm::dvec3 full = background_color(scene, row);
    glm::dvec3 in_target = rounded(full);
    for (const glm::dvec4& any : layers.at(column, row)) {
      const glm::dvec4 layer = glm::clamp(any, 0.0, 1.0);
      full = glm::mix(full, glm::dvec3(layer), layer.a);
      in_target = rounded(glm::mix(in_target, glm::dvec3(rounded(layer)), rounded(layer).a));
    }
    set_pixel(result.picture, column, row, full);
    set_pixel(result.blended_in_target, column, row, in_target);
    result.near_line.push_back(std::any_of(result.lines.begin(), result.lines.end(), [&](const auto& line) {
      return distance_to_segment({column + 0.5, row + 0.5}, line.first, line.second) < line_reach;
    }));
  });
  return result;
}

testing::AssertionResult agree(const Picture& actual, const ReferencePicture& expected, Tolerance tolerance) {
  if (actual.bytes.size() != expected.picture.bytes.size())
    return testing::AssertionFailure() << "sizes differ";
  Picture compared = actual;
  const Picture& reference = distance(actual, expected.picture) < distance(actual, expected.blended_in_target)
                                 ? expected.picture
                                 : expected.blended_in_target;
  compared.for_each([&](int x, int y) {
    if (expected.near_line[static_cast<std::size_t>(y * actual.width + x)])
      std::copy_n(reference.pixel(x, y), 4, compared.pixel(x, y));
  });
  return agree(compared, reference, tolerance);
}

testing::AssertionResult lines_show(const Picture& actual, const ReferencePicture& expected,
                                    const VolumeScene& scene) {
  const glm::dvec3 foreground = 255.0 * opaque_color(scene.foreground);
  const auto apart = [&](const std::uint8_t* p) {
    return glm::length(glm::dvec3(p[2], p[1], p[0]) - foreground);
  };
  for (const auto& [from, to] : expected.lines) {
    for (double t = 0.03; t < 1.0; t += 0.07) {
      const glm::dvec2 place = glm::mix(from, to, t);
      double strongest = 0.0;  // share of the foreground's colour; a line may miss a pixel by one
      for (int i = 0; i < 9; ++i) {
        const int x = glm::clamp(static_cast<int>(place.x) + i % 3 - 1, 0, actual.width - 1);
        const int y = glm::clamp(static_cast<int>(place.y) + i / 3 - 1, 0, actual.height - 1);
        strongest =
            std::max(strongest, 1.0 - apart(actual.pixel(x, y)) / apart(expected.picture.pixel(x, y)));
      }
      if (strongest < 0.42)
        return testing::AssertionFailure()
               << "no line at " << place.x << ", " << place.y << ", only " << strongest;
    }
  }
  return testing::AssertionSuccess();
}

}  // namespace oct::test
