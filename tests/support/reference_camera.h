// The camera of the volume scene in double precision, written from its formulas, for references of what is
// drawn around and on the volume.
#pragma once

#include <array>
#include <cmath>
#include <glm/glm.hpp>

#include "support/volume_scene.h"

namespace oct::test {

class ReferenceCamera {
 public:
  explicit ReferenceCamera(const VolumeScene& scene)
      : width_(scene.viewportWidth),
        height_(scene.viewportHeight),
        zoom_(scene.zoom),
        perspective_(scene.perspective) {
    const double ax = glm::radians(scene.angleX);
    const double ay = glm::radians(scene.angleY);
    const glm::dvec3 range(scene.range[0], scene.range[1], scene.range[2]);
    const double s = 2.0 / glm::length(range);
    // Rows of rotation about x times rotation about y times scaling; glm counts columns.
    const glm::dmat3 aboutX(1, 0, 0, 0, std::cos(ax), std::sin(ax), 0, -std::sin(ax), std::cos(ax));
    const glm::dmat3 aboutY(std::cos(ay), 0, -std::sin(ay), 0, 1, 0, std::sin(ay), 0, std::cos(ay));
    const glm::dmat3 scale(s * range.y, 0, 0, 0, -s * range.x, 0, 0, 0, s * range.z);
    linear_ = aboutX * aboutY * scale;
    shift_ = glm::dvec3(scene.translation[0], scene.translation[1], scene.translation[2] - 5.0);
  }

  // Of the linear part, from model to eye coordinates.
  const glm::dmat3& linear() const { return linear_; }
  glm::dvec3 toEye(const glm::dvec3& model) const { return linear_ * model + shift_; }
  glm::dvec3 toModel(const glm::dvec3& eye) const { return glm::inverse(linear_) * (eye - shift_); }

  // Pixels from the lower left corner.
  glm::dvec2 toWindow(const glm::dvec3& model) const {
    const glm::dvec3 eye = toEye(model);
    const glm::dvec2 reach = halfExtent() * (perspective_ ? -eye.z : 1.0);
    return (glm::dvec2(eye) / reach + 1.0) * 0.5 * glm::dvec2(width_, height_);
  }

  struct Line {
    glm::dvec3 origin;
    glm::dvec3 direction;
  };

  // Through the middle of a pixel, in eye coordinates and in those of the model.
  Line line(int column, int row) const {
    const glm::dvec2 at =
        (glm::dvec2(column + 0.5, row + 0.5) / glm::dvec2(width_, height_) * 2.0 - 1.0) * halfExtent();
    if (perspective_) return {{0, 0, 0}, {at, -1.0}};
    return {{at, 0.0}, {0, 0, -1.0}};
  }
  Line modelLine(int column, int row) const {
    const Line eye = line(column, row);
    return {toModel(eye.origin), glm::inverse(linear_) * eye.direction};
  }

 private:
  // Of what is seen: at distance 1, or everywhere with the orthographic projection.
  glm::dvec2 halfExtent() const {
    const double aspect = static_cast<double>(width_) / height_;
    if (!perspective_) return {0.1 * zoom_, 0.1 * zoom_ / aspect};
    const double t = std::tan(glm::radians(5.0 + zoom_) / 2.0);
    return {aspect * t, t};
  }

  int width_;
  int height_;
  double zoom_;
  bool perspective_;
  glm::dmat3 linear_;
  glm::dvec3 shift_;
};

// A colour map's entry at a value from 0 to 1, linear between the middles of the entries; red, green, blue,
// alpha.
inline glm::dvec4 mappedColor(const std::vector<std::uint32_t>& colors, double value) {
  const auto entry = [&](int i) {
    const std::uint32_t packed =
        colors[static_cast<std::size_t>(glm::clamp(i, 0, static_cast<int>(colors.size()) - 1))];
    return glm::dvec4(packed & 0xFFU, packed >> 8 & 0xFFU, packed >> 16 & 0xFFU, packed >> 24) / 255.0;
  };
  const double position = glm::clamp(value, 0.0, 1.0) * static_cast<double>(colors.size()) - 0.5;
  const int below = static_cast<int>(std::floor(position));
  return glm::mix(entry(below), entry(below + 1), position - below);
}

inline glm::dvec3 backgroundColor(const VolumeScene& scene, int row) {
  const auto unpacked = [](std::uint32_t color) {
    return glm::dvec3(color >> 24, color >> 16 & 0xFFU, color >> 8 & 0xFFU) / 255.0;
  };
  return glm::mix(unpacked(scene.backgroundBottom), unpacked(scene.backgroundTop),
                  (row + 0.5) / scene.viewportHeight);
}

inline void setPixel(Picture& picture, int column, int row, const glm::dvec3& color) {
  std::uint8_t* const pixel = picture.pixel(column, row);
  for (int c = 0; c < 3; ++c) {
    pixel[2 - c] = static_cast<std::uint8_t>(std::lround(glm::clamp(color[c], 0.0, 1.0) * 255.0));
  }
  pixel[3] = 255;
}

inline Picture backgroundPicture(const VolumeScene& scene) {
  Picture picture(scene.viewportWidth, scene.viewportHeight);
  picture.forEach([&](int x, int y) { setPixel(picture, x, y, backgroundColor(scene, y)); });
  return picture;
}

inline double distanceToSegment(const glm::dvec2& point, const glm::dvec2& from, const glm::dvec2& to) {
  const glm::dvec2 along = to - from;
  const double length = glm::dot(along, along);
  const double t = length > 0.0 ? glm::clamp(glm::dot(point - from, along) / length, 0.0, 1.0) : 0.0;
  return glm::length(point - from - t * along);
}

}  // namespace oct::test
