#include "support/volume_reference.h"

#include <algorithm>
#include <cmath>
#include <optional>

#include "support/reference_camera.h"

namespace oct::test {
namespace {

using Line = ReferenceCamera::Line;

glm::dvec3 at(const Line& line, double t) {
  return line.origin + t * line.direction;
}

// Where a pixel's view line passes the box, in model coordinates.
struct Passage {
  glm::dvec3 front;
  glm::dvec3 back;
};

std::optional<glm::dvec4> clipPlane(const VolumeScene& scene) {
  if (!scene.clip) return {};
  const double ax = glm::radians(scene.clipFixed ? scene.fixedAngleX : scene.angleX);
  const double ay = glm::radians(scene.clipFixed ? scene.fixedAngleY : scene.angleY);
  const glm::dvec3 normal(std::sin(ay) * std::cos(ax), std::sin(ax), -std::cos(ay) * std::cos(ax));
  const double reach = std::abs(normal.x) + std::abs(normal.y) + std::abs(normal.z);
  return glm::dvec4(normal, (2.0 * scene.clipValue - 1.0) * 0.99 * reach);
}

// How far along a line the plane is.
double meets(const glm::dvec4& plane, const Line& line) {
  return -glm::dot(plane, glm::dvec4(line.origin, 1.0)) / glm::dot(glm::dvec3(plane), line.direction);
}

double boxEnd(const VolumeScene& scene) {
  if (scene.slicesUploaded < 0 || scene.slicesUploaded == scene.volume.depth) return 1.0;
  const double n = scene.volume.depth;
  return 2.0 * scene.slicesUploaded / n - 1.0 - 1.0 / n;
}

std::optional<Passage> passage(const VolumeScene& scene, const Line& line, double end) {
  const glm::dvec3 highest(1.0, 1.0, end);
  double enter = -1e30;
  double leave = 1e30;
  for (int axis = 0; axis < 3; ++axis) {
    const double from = line.origin[axis];
    if (std::abs(line.direction[axis]) < 1e-12) {
      if (from < -1.0 || from > highest[axis]) return {};
      continue;
    }
    const double first = (-1.0 - from) / line.direction[axis];
    const double second = (highest[axis] - from) / line.direction[axis];
    enter = std::max(enter, std::min(first, second));
    leave = std::min(leave, std::max(first, second));
  }
  if (enter >= leave) return {};
  if (const auto plane = clipPlane(scene)) {
    const auto kept = [&](double t) { return glm::dot(*plane, glm::dvec4(at(line, t), 1.0)) >= 0.0; };
    const bool entersKept = kept(enter);
    const bool leavesKept = kept(leave);
    if (!entersKept && (!leavesKept || scene.clipOpen)) return {};
    if (!entersKept) enter = meets(*plane, line);
    if (!leavesKept) leave = meets(*plane, line);
  }
  return Passage{at(line, enter), at(line, leave)};
}

// Whether a view line meets the part of the clip plane that lies in the box.
bool meetsCut(const VolumeScene& scene, const Line& line) {
  const auto plane = clipPlane(scene);
  if (!plane) return false;
  const glm::dvec3 p = glm::abs(at(line, meets(*plane, line)));
  return std::max({p.x, p.y, p.z}) <= 1.0;
}

double normalised(const Coloring& coloring, double value) {
  return (value - coloring.lower) / (coloring.upper - coloring.lower);
}

// One ray in texture space.
class Ray {
 public:
  Ray(const VolumeScene& scene, const Passage& passage)
      : scene_(scene),
        volume_(scene.content == 1 ? scene.overlay : scene.volume),
        coloring_(scene.content == 1 ? scene.overlayColoring : scene.coloring),
        front_(passage.front * 0.5 + 0.5),
        current_(front_) {
    const glm::dvec3 back = passage.back * 0.5 + 0.5;
    length_ = glm::length(back - front_);
    step_ = (back - front_) * (1.0 / length_ * 1.7320508 / scene.slices);
  }

  glm::dvec4 color() {
    if (scene_.mode == 1) return maximum();
    if (scene_.mode == 2) return mean();
    return scene_.content == 2 && scene_.mode == 0 ? compositeWithOverlay() : composite();
  }

 private:
  bool atEnd() const { return glm::length(current_ - front_) >= length_; }
  void advance() { current_ = current_ + step_; }
  double value(const Volume& volume) const {
    return voxelAt(volume, {current_.y, current_.x, current_.z},
                   scene_.border ? Surroundings::zeros : Surroundings::edge);
  }
  double value() const { return value(volume_); }

  void add(glm::dvec4& total, double value) const {
    if (!(value > coloring_.lower)) return;
    glm::dvec4 color = mappedColor(coloring_.colors, normalised(coloring_, value));
    if (scene_.mode == 3) modulate(color);
    if (!(color.a > 0.0)) return;
    const double alpha = color.a * (1.0 - total.a) + total.a;
    const glm::dvec3 sum = glm::dvec3(color) * color.a * (1.0 - total.a) + glm::dvec3(total) * total.a;
    total = glm::dvec4(sum / alpha, alpha);
  }

  void modulate(glm::dvec4& color) const {
    const double slice = (scene_.secondaryIndex + 0.5) / scene_.secondary.width;
    const double secondary =
        voxelAt(scene_.secondary, {slice, current_.x, current_.z}, Surroundings::firstAxisRepeats);
    const double surface = std::clamp(normalised(scene_.secondaryColoring, secondary), 0.0, 1.0);
    const glm::dvec4 second = mappedColor(scene_.secondaryColoring.colors, surface);
    color *= glm::dvec4((1.0 + surface) * glm::dvec3(second), 1.0);
  }

  glm::dvec4 composite() {
    glm::dvec4 total(0.0);
    for (int i = 0; i <= scene_.slices; ++i) {
      add(total, value());
      if (total.a > 0.9) return {glm::dvec3(total), 1.0};
      if (atEnd()) break;
      advance();
    }
    return total;
  }

  glm::dvec4 compositeWithOverlay() {
    glm::dvec4 total(0.0);
    double overlay = -1e6;
    for (int i = 0; i <= scene_.slices; ++i) {
      if (!(total.a > 0.99)) add(total, value());
      overlay = std::max(overlay, normalised(scene_.overlayColoring, value(scene_.overlay)));
      if (atEnd()) break;
      advance();
    }
    const glm::dvec4 over(glm::dvec3(mappedColor(scene_.overlayColoring.colors, overlay)), overlay);
    return glm::mix(total, over, overlay);
  }

  glm::dvec4 maximum() {
    double largest = value();
    for (int i = 1; i <= scene_.slices; ++i) {
      largest = std::max(largest, value());
      if (largest > coloring_.upper || atEnd()) break;
      advance();
    }
    return mappedColor(coloring_.colors, normalised(coloring_, largest));
  }

  glm::dvec4 mean() {
    double sum = value();
    int counter = 0;
    for (int i = 1; i <= scene_.slices; ++i) {
      sum += value();
      if (atEnd()) break;
      advance();
      ++counter;
    }
    return mappedColor(coloring_.colors, normalised(coloring_, sum / counter));
  }

  const VolumeScene& scene_;
  const Volume& volume_;
  const Coloring& coloring_;
  glm::dvec3 front_;
  glm::dvec3 current_;
  glm::dvec3 step_;
  double length_ = 0.0;
};

// To what eight bits hold.
template <class Color>
Color rounded(const Color& color) {
  return glm::round(255.0 * glm::clamp(color, 0.0, 1.0)) / 255.0;
}

double distance(const Picture& a, const Picture& b) {
  double sum = 0.0;
  for (std::size_t i = 0; i < a.bytes.size(); ++i) sum += std::abs(int{a.bytes[i]} - int{b.bytes[i]});
  return sum;
}

}  // namespace

double voxelAt(const Volume& volume, const glm::dvec3& texture, Surroundings surroundings) {
  const glm::ivec3 size(volume.width, volume.height, volume.depth);
  const glm::dvec3 position = texture * glm::dvec3(size) - 0.5;
  const glm::dvec3 below = glm::floor(position);
  const glm::dvec3 weight = position - below;
  double sum = 0.0;
  for (int corner = 0; corner < 8; ++corner) {
    const glm::ivec3 step(corner & 1, corner >> 1 & 1, corner >> 2);
    glm::ivec3 index = glm::ivec3(below) + step;
    if (surroundings == Surroundings::firstAxisRepeats) index.x = (index.x % size.x + size.x) % size.x;
    const glm::ivec3 inside = glm::clamp(index, glm::ivec3(0), size - 1);
    if (surroundings == Surroundings::zeros && inside != index) continue;
    index = inside;
    const glm::dvec3 share = glm::mix(1.0 - weight, weight, glm::bvec3(step));
    sum += share.x * share.y * share.z * volume.at(index.x, index.y, index.z);
  }
  return static_cast<float>(sum);  // an even volume stays exactly even
}

ReferencePicture referencePicture(const VolumeScene& scene) {
  const int width = scene.viewportWidth;
  const int height = scene.viewportHeight;
  ReferencePicture result{
      Picture(width, height), Picture(width, height),
      std::vector<bool>(static_cast<std::size_t>(width) * static_cast<std::size_t>(height))};
  std::vector<bool> cut(result.nearCut.size());
  const ReferenceCamera camera(scene);
  const double end = boxEnd(scene);
  const auto index = [width](int column, int row) { return static_cast<std::size_t>(row * width + column); };
  result.picture.forEach([&](int column, int row) {
    const glm::dvec3 background = rounded(backgroundColor(scene, row));
    const Line line = camera.modelLine(column, row);
    cut[index(column, row)] = meetsCut(scene, line);
    glm::dvec4 ray(0.0);
    if (const auto passes = passage(scene, line, end)) {
      ray = glm::clamp(Ray(scene, *passes).color(), 0.0, 1.0);
    }
    setPixel(result.picture, column, row, glm::mix(background, glm::dvec3(ray), ray.a));
    ray = rounded(ray);
    setPixel(result.blendedInTarget, column, row, glm::mix(background, glm::dvec3(ray), ray.a));
  });
  constexpr int reach = 2;
  result.picture.forEach([&](int column, int row) {
    bool inside = false;
    bool outside = false;
    for (int y = std::max(0, row - reach); y <= std::min(height - 1, row + reach); ++y) {
      for (int x = std::max(0, column - reach); x <= std::min(width - 1, column + reach); ++x) {
        (cut[index(x, y)] ? inside : outside) = true;
      }
    }
    result.nearCut[index(column, row)] = inside && outside;
  });
  return result;
}

testing::AssertionResult agree(const Picture& actual, const ReferencePicture& expected, Tolerance tolerance) {
  if (actual.bytes.size() != expected.picture.bytes.size())
    return testing::AssertionFailure() << "sizes differ";
  Picture compared = actual;
  const Picture& reference = distance(actual, expected.picture) < distance(actual, expected.blendedInTarget)
                                 ? expected.picture
                                 : expected.blendedInTarget;
  for (std::size_t i = 0; i < expected.nearCut.size(); ++i) {
    if (!expected.nearCut[i]) continue;
    std::copy_n(reference.bytes.begin() + static_cast<std::ptrdiff_t>(4 * i), 4,
                compared.bytes.begin() + static_cast<std::ptrdiff_t>(4 * i));
  }
  return agree(compared, reference, tolerance);
}

}  // namespace oct::test
