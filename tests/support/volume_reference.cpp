#include "support/volume_reference.h"

#include <algorithm>
#include <cmath>
#include <optional>

namespace oct::test {
namespace {

struct Vector {
  double x = 0.0;
  double y = 0.0;
  double z = 0.0;

  Vector operator+(const Vector& o) const { return {x + o.x, y + o.y, z + o.z}; }
  Vector operator-(const Vector& o) const { return {x - o.x, y - o.y, z - o.z}; }
  Vector operator*(double f) const { return {x * f, y * f, z * f}; }
  double length() const { return std::sqrt(x * x + y * y + z * z); }
};

using Rgba = std::array<double, 4>;

struct Line {
  Vector origin;
  Vector direction;
  Vector at(double t) const { return origin + direction * t; }
};

// Where a pixel's view line passes the box, in model coordinates.
struct Passage {
  Vector front;
  Vector back;
};

double radians(double degrees) {
  return degrees * 3.14159265358979323846 / 180.0;
}

// From eye to model coordinates: the inverse of translation, rotation about x, rotation about y and scaling.
class ModelSpace {
 public:
  explicit ModelSpace(const VolumeScene& scene)
      : shift_{scene.translation[0], scene.translation[1], scene.translation[2] - 5.0},
        ax_(radians(scene.angleX)),
        ay_(radians(scene.angleY)) {
    const double a = scene.range[0];
    const double b = scene.range[1];
    const double c = scene.range[2];
    const double s = 1.0 / (0.5 * std::sqrt(a * a + b * b + c * c));
    scale_ = {b * s, -a * s, c * s};
  }
  Vector direction(const Vector& v) const {
    const Vector aboutX{v.x, std::cos(ax_) * v.y + std::sin(ax_) * v.z,
                        -std::sin(ax_) * v.y + std::cos(ax_) * v.z};
    const Vector aboutY{std::cos(ay_) * aboutX.x - std::sin(ay_) * aboutX.z, aboutX.y,
                        std::sin(ay_) * aboutX.x + std::cos(ay_) * aboutX.z};
    return {aboutY.x / scale_.x, aboutY.y / scale_.y, aboutY.z / scale_.z};
  }
  Vector point(const Vector& v) const { return direction(v - shift_); }

 private:
  Vector shift_;
  double ax_;
  double ay_;
  Vector scale_;
};

Line viewLine(const VolumeScene& scene, const ModelSpace& model, int column, int row) {
  const double x = 2.0 * (column + 0.5) / scene.viewportWidth - 1.0;
  const double y = 2.0 * (row + 0.5) / scene.viewportHeight - 1.0;
  const double aspect = static_cast<double>(scene.viewportWidth) / scene.viewportHeight;
  if (scene.perspective) {
    const double t = std::tan(radians(5.0 + scene.zoom) / 2.0);
    return {model.point({}), model.direction({x * aspect * t, y * t, -1.0})};
  }
  return {model.point({x * 0.1 * scene.zoom, y * 0.1 * scene.zoom / aspect, 0.0}),
          model.direction({0.0, 0.0, -1.0})};
}

std::optional<std::array<double, 4>> clipPlane(const VolumeScene& scene) {
  if (!scene.clip) return {};
  const double ax = radians(scene.clipFixed ? scene.fixedAngleX : scene.angleX);
  const double ay = radians(scene.clipFixed ? scene.fixedAngleY : scene.angleY);
  const double a = std::sin(ay) * std::cos(ax);
  const double b = std::sin(ax);
  const double c = -std::cos(ay) * std::cos(ax);
  const double d = (2.0 * scene.clipValue - 1.0) * 0.99 * (std::abs(a) + std::abs(b) + std::abs(c));
  return std::array{a, b, c, d};
}

double boxEnd(const VolumeScene& scene) {
  if (scene.slicesUploaded < 0 || scene.slicesUploaded == scene.volume.depth) return 1.0;
  const double n = scene.volume.depth;
  return 2.0 * scene.slicesUploaded / n - 1.0 - 1.0 / n;
}

std::optional<Passage> passage(const VolumeScene& scene, const Line& line, double end) {
  const std::array<double, 3> origin{line.origin.x, line.origin.y, line.origin.z};
  const std::array<double, 3> direction{line.direction.x, line.direction.y, line.direction.z};
  const std::array<double, 3> highest{1.0, 1.0, end};
  double enter = -1e30;
  double leave = 1e30;
  for (std::size_t axis = 0; axis < 3; ++axis) {
    if (std::abs(direction[axis]) < 1e-12) {
      if (origin[axis] < -1.0 || origin[axis] > highest[axis]) return {};
      continue;
    }
    const double first = (-1.0 - origin[axis]) / direction[axis];
    const double second = (highest[axis] - origin[axis]) / direction[axis];
    enter = std::max(enter, std::min(first, second));
    leave = std::min(leave, std::max(first, second));
  }
  if (enter >= leave) return {};
  if (const auto plane = clipPlane(scene)) {
    const auto& [a, b, c, d] = *plane;
    const double along = a * line.direction.x + b * line.direction.y + c * line.direction.z;
    const auto distance = [&, a = a, b = b, c = c, d = d](const Vector& p) {
      return a * p.x + b * p.y + c * p.z + d;
    };
    const bool entersKept = distance(line.at(enter)) >= 0.0;
    const bool leavesKept = distance(line.at(leave)) >= 0.0;
    const double cut = -distance(line.origin) / along;
    if (!entersKept && (!leavesKept || scene.clipOpen)) return {};
    if (!entersKept) enter = cut;
    if (!leavesKept) leave = cut;
  }
  return Passage{line.at(enter), line.at(leave)};
}

// Whether a view line meets the part of the clip plane that lies in the box.
bool meetsCut(const VolumeScene& scene, const Line& line) {
  const auto plane = clipPlane(scene);
  if (!plane) return false;
  const auto& [a, b, c, d] = *plane;
  const double along = a * line.direction.x + b * line.direction.y + c * line.direction.z;
  const Vector p = line.at(-(a * line.origin.x + b * line.origin.y + c * line.origin.z + d) / along);
  return std::max({std::abs(p.x), std::abs(p.y), std::abs(p.z)}) <= 1.0;
}

double sample(const Volume& volume, const std::array<double, 3>& coordinate, bool repeatFirst = false,
              bool border = false) {
  const std::array<int, 3> size{volume.width, volume.height, volume.depth};
  std::array<std::array<int, 2>, 3> index{};
  std::array<double, 3> weight{};
  std::array<std::array<double, 2>, 3> share{{{1.0, 1.0}, {1.0, 1.0}, {1.0, 1.0}}};  // 0: of the border
  for (std::size_t axis = 0; axis < 3; ++axis) {
    const double position = coordinate[axis] * size[axis] - 0.5;
    const int below = static_cast<int>(std::floor(position));
    weight[axis] = position - below;
    for (int i = 0; i < 2; ++i) {
      const int n = size[axis];
      index[axis][static_cast<std::size_t>(i)] =
          repeatFirst && axis == 0 ? ((below + i) % n + n) % n : std::clamp(below + i, 0, n - 1);
      const bool outside = below + i < 0 || below + i >= n;
      if (border && outside) share[axis][static_cast<std::size_t>(i)] = 0.0;
    }
  }
  double sum = 0.0;
  for (std::size_t i = 0; i < 2; ++i) {
    for (std::size_t j = 0; j < 2; ++j) {
      for (std::size_t k = 0; k < 2; ++k) {
        sum += share[0][i] * share[1][j] * share[2][k] * (i ? weight[0] : 1.0 - weight[0]) *
               (j ? weight[1] : 1.0 - weight[1]) * (k ? weight[2] : 1.0 - weight[2]) *
               volume.at(index[0][i], index[1][j], index[2][k]);
      }
    }
  }
  return static_cast<float>(sum);  // an even volume stays exactly even
}

// Linear between the centres of the entries.
Rgba colorOf(const Coloring& coloring, double normalised) {
  const int count = static_cast<int>(coloring.colors.size());
  const double position = std::clamp(normalised, 0.0, 1.0) * count - 0.5;
  const int below = static_cast<int>(std::floor(position));
  const double weight = position - below;
  const auto entry = [&](int i) {
    return coloring.colors[static_cast<std::size_t>(std::clamp(i, 0, count - 1))];
  };
  Rgba color{};
  for (unsigned c = 0; c < 4; ++c) {
    const auto channel = [c](std::uint32_t packed) { return ((packed >> (8 * c)) & 0xFFU) / 255.0; };
    color[c] = (1.0 - weight) * channel(entry(below)) + weight * channel(entry(below + 1));
  }
  return color;
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
        front_(passage.front * 0.5 + Vector{0.5, 0.5, 0.5}),
        current_(front_) {
    const Vector back = passage.back * 0.5 + Vector{0.5, 0.5, 0.5};
    length_ = (back - front_).length();
    step_ = (back - front_) * (1.0 / length_ * 1.7320508 / scene.slices);
  }

  Rgba color() {
    if (scene_.mode == 1) return maximum();
    if (scene_.mode == 2) return mean();
    return scene_.content == 2 && scene_.mode == 0 ? compositeWithOverlay() : composite();
  }

 private:
  bool atEnd() const { return (current_ - front_).length() >= length_; }
  void advance() { current_ = current_ + step_; }
  double value() const { return sample(volume_, {current_.y, current_.x, current_.z}, false, scene_.border); }

  void add(Rgba& total, double value) const {
    if (!(value > coloring_.lower)) return;
    Rgba color = colorOf(coloring_, normalised(coloring_, value));
    if (scene_.mode == 3) modulate(color);
    if (!(color[3] > 0.0)) return;
    const double alpha = total[3];
    Rgba next{};
    next[3] = color[3] * (1.0 - alpha) + alpha;
    for (std::size_t c = 0; c < 3; ++c) {
      next[c] = (color[c] * color[3] * (1.0 - alpha) + total[c] * alpha) / next[3];
    }
    total = next;
  }

  void modulate(Rgba& color) const {
    const double slice = (scene_.secondaryIndex + 0.5) / scene_.secondary.width;
    const double secondary = sample(scene_.secondary, {slice, current_.x, current_.z}, true);
    const double surface = std::clamp(normalised(scene_.secondaryColoring, secondary), 0.0, 1.0);
    const Rgba second = colorOf(scene_.secondaryColoring, surface);
    for (std::size_t c = 0; c < 3; ++c) color[c] *= (1.0 + surface) * second[c];
  }

  Rgba composite() {
    Rgba total{};
    for (int i = 0; i <= scene_.slices; ++i) {
      add(total, value());
      if (total[3] > 0.9) return {total[0], total[1], total[2], 1.0};
      if (atEnd()) break;
      advance();
    }
    return total;
  }

  Rgba compositeWithOverlay() {
    Rgba total{};
    double overlay = -1e6;
    for (int i = 0; i <= scene_.slices; ++i) {
      if (!(total[3] > 0.99)) add(total, value());
      const double over = sample(scene_.overlay, {current_.y, current_.x, current_.z});
      overlay = std::max(overlay, normalised(scene_.overlayColoring, over));
      if (atEnd()) break;
      advance();
    }
    Rgba over = colorOf(scene_.overlayColoring, overlay);
    over[3] = overlay;
    Rgba result{};
    for (std::size_t c = 0; c < 4; ++c) result[c] = total[c] * (1.0 - overlay) + over[c] * overlay;
    return result;
  }

  Rgba maximum() {
    double largest = value();
    for (int i = 1; i <= scene_.slices; ++i) {
      largest = std::max(largest, value());
      if (largest > coloring_.upper || atEnd()) break;
      advance();
    }
    return colorOf(coloring_, normalised(coloring_, largest));
  }

  Rgba mean() {
    double sum = value();
    int counter = 0;
    for (int i = 1; i <= scene_.slices; ++i) {
      sum += value();
      if (atEnd()) break;
      advance();
      ++counter;
    }
    return colorOf(coloring_, normalised(coloring_, sum / counter));
  }

  const VolumeScene& scene_;
  const Volume& volume_;
  const Coloring& coloring_;
  Vector front_;
  Vector current_;
  Vector step_;
  double length_ = 0.0;
};

double quantised(double value) {
  return std::round(255.0 * std::clamp(value, 0.0, 1.0)) / 255.0;
}

Rgba backgroundAt(const VolumeScene& scene, int row) {
  const double t = (row + 0.5) / scene.viewportHeight;
  Rgba color{0.0, 0.0, 0.0, 1.0};
  for (unsigned c = 0; c < 3; ++c) {
    const auto channel = [c](std::uint32_t packed) { return ((packed >> (24 - 8 * c)) & 0xFFU) / 255.0; };
    color[c] = quantised(channel(scene.backgroundBottom) * (1.0 - t) + channel(scene.backgroundTop) * t);
  }
  return color;
}

}  // namespace

ReferencePicture referencePicture(const VolumeScene& scene) {
  const int width = scene.viewportWidth;
  const int height = scene.viewportHeight;
  ReferencePicture result{Picture(width, height), std::vector<bool>(static_cast<std::size_t>(width) *
                                                                    static_cast<std::size_t>(height))};
  std::vector<bool> cut(result.nearCut.size());
  const ModelSpace model(scene);
  const double end = boxEnd(scene);
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      Rgba color = backgroundAt(scene, row);
      const Line line = viewLine(scene, model, column, row);
      cut[static_cast<std::size_t>(row * width + column)] = meetsCut(scene, line);
      if (const auto passes = passage(scene, line, end)) {
        const Rgba ray = Ray(scene, *passes).color();
        const double alpha = std::clamp(ray[3], 0.0, 1.0);
        for (std::size_t c = 0; c < 4; ++c) {
          color[c] = std::clamp(ray[c], 0.0, 1.0) * alpha + color[c] * (1.0 - alpha);
        }
      }
      std::uint8_t* const pixel = result.picture.pixel(column, row);
      constexpr std::array<std::size_t, 4> order{2, 1, 0, 3};
      for (std::size_t c = 0; c < 4; ++c) {
        pixel[c] = static_cast<std::uint8_t>(std::lround(255.0 * quantised(color[order[c]])));
      }
    }
  }
  constexpr int reach = 2;
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      bool inside = false;
      bool outside = false;
      for (int y = std::max(0, row - reach); y <= std::min(height - 1, row + reach); ++y) {
        for (int x = std::max(0, column - reach); x <= std::min(width - 1, column + reach); ++x) {
          (cut[static_cast<std::size_t>(y * width + x)] ? inside : outside) = true;
        }
      }
      result.nearCut[static_cast<std::size_t>(row * width + column)] = inside && outside;
    }
  }
  return result;
}

testing::AssertionResult agree(const Picture& actual, const ReferencePicture& expected, Tolerance tolerance) {
  if (actual.bytes.size() != expected.picture.bytes.size())
    return testing::AssertionFailure() << "sizes differ";
  Picture compared = actual;
  for (std::size_t i = 0; i < expected.nearCut.size(); ++i) {
    if (!expected.nearCut[i]) continue;
    std::copy_n(expected.picture.bytes.begin() + static_cast<std::ptrdiff_t>(4 * i), 4,
                compared.bytes.begin() + static_cast<std::ptrdiff_t>(4 * i));
  }
  return agree(compared, expected.picture, tolerance);
}

}  // namespace oct::test
