// The camera of the volume scene in double precision, written from its formulas, and the geometry and colours
// that references share.
#pragma once

#include <array>
#include <cmath>

#include <glm/glm.hpp>

#include "support/volume_scene.h"

namespace oct::test {

struct Line {
  glm::dvec3 origin;
  glm::dvec3 direction;

  glm::dvec3 at(double t) const { return origin + t * direction; }
};

class ReferenceCamera {
 public:
  explicit ReferenceCamera(const VolumeScene& scene)
      : width_(scene.viewport_width),
        height_(scene.viewport_height),
        zoom_(scene.zoom),
        perspective_(scene.perspective) {
    const double ax = glm::radians(scene.angle_x);
    const double ay = glm::radians(scene.angle_y);
    const glm::dvec3 range(scene.range[0], scene.range[1], scene.range[2]);
    const double s = 2.0 / glm::length(range);
    // Rows of rotation about x times rotation about y times scaling; glm counts columns.
    const glm::dmat3 about_x(1, 0, 0, 0, std::cos(ax), std::sin(ax), 0, -std::sin(ax), std::cos(ax));
    const glm::dmat3 about_y(std::cos(ay), 0, -std::sin(ay), 0, 1, 0, std::sin(ay), 0, std::cos(ay));
    const glm::dmat3 scale(s * range.y, 0, 0, 0, -s * range.x, 0, 0, 0, s * range.z);
    linear_ = about_x * about_y * scale;
    shift_ = glm::dvec3(scene.translation[0], scene.translation[1], scene.translation[2] - 5.0);
  }

  // Of the linear part, from model to eye coordinates.
  const glm::dmat3& linear() const { return linear_; }
  glm::dvec3 to_eye(const glm::dvec3& model) const { return linear_ * model + shift_; }
  glm::dvec3 to_model(const glm::dvec3& eye) const { return glm::inverse(linear_) * (eye - shift_); }

  // Pixels from the lower left corner.
  glm::dvec2 to_window(const glm::dvec3& model) const {
    const glm::dvec3 eye = to_eye(model);
    const glm::dvec2 reach = half_extent() * (perspective_ ? -eye.z : 1.0);
    return (glm::dvec2(eye) / reach + 1.0) * 0.5 * glm::dvec2(width_, height_);
  }

  // Through the middle of a pixel, in eye coordinates and in those of the model.
  Line line(int column, int row) const {
    const glm::dvec2 at =
        (glm::dvec2(column + 0.5, row + 0.5) / glm::dvec2(width_, height_) * 2.0 - 1.0) * half_extent();
    if (perspective_) return {{0, 0, 0}, {at, -1.0}};
    return {{at, 0.0}, {0, 0, -1.0}};
  }
  Line model_line(int column, int row) const {
    const Line eye = line(column, row);
    return {to_model(eye.origin), glm::inverse(linear_) * eye.direction};
  }

 private:
  // Of what is seen: at distance 1, or everywhere with the orthographic projection.
  glm::dvec2 half_extent() const {
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

// Red, green, blue, alpha; R is the lowest byte.
inline glm::dvec4 unpacked(std::uint32_t color) {
  return glm::dvec4(color & 0xFFU, color >> 8 & 0xFFU, color >> 16 & 0xFFU, color >> 24) / 255.0;
}

// A colour map's entry at a value from 0 to 1, linear between the middles of the entries.
inline glm::dvec4 mapped_color(const std::vector<std::uint32_t>& colors, double value) {
  const int last = static_cast<int>(colors.size()) - 1;
  const double position = glm::clamp(value, 0.0, 1.0) * (last + 1) - 0.5;
  const int below = static_cast<int>(std::floor(position));
  const auto entry = [&](int i) {
    return unpacked(colors[static_cast<std::size_t>(glm::clamp(i, 0, last))]);
  };
  return glm::mix(entry(below), entry(below + 1), position - below);
}

// 0xRRGGBBAA
inline glm::dvec3 opaque_color(std::uint32_t color) {
  const glm::dvec4 bytes = unpacked(color);
  return {bytes.a, bytes.b, bytes.g};
}

inline glm::dvec3 background_color(const VolumeScene& scene, int row) {
  return glm::mix(opaque_color(scene.background_bottom), opaque_color(scene.background_top),
                  (row + 0.5) / scene.viewport_height);
}

// To what eight bits hold.
template <class Color>
Color rounded(const Color& color) {
  return glm::round(255.0 * color) / 255.0;
}

inline void set_pixel(Picture& picture, int column, int row, const glm::dvec3& color, double alpha = 1.0) {
  const glm::dvec4 bgra(color.b, color.g, color.r, alpha);
  for (int c = 0; c < 4; ++c) {
    picture.pixel(column, row)[c] =
        static_cast<std::uint8_t>(std::lround(glm::clamp(bgra[c], 0.0, 1.0) * 255.0));
  }
}

inline Picture background_picture(const VolumeScene& scene) {
  Picture picture(scene.viewport_width, scene.viewport_height);
  picture.for_each([&](int x, int y) { set_pixel(picture, x, y, background_color(scene, y)); });
  return picture;
}

}  // namespace oct::test
