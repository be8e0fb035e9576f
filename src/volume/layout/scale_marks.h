// Scale marks along the volume box: where ticks and labels go on the screen. No OpenGL.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include <glm/glm.hpp>

#include "volume/layout/camera.h"

namespace oct {

// A step of 1, 2 or 5 times a power of ten.
class TickStep {
 public:
  static TickStep at_least(double value);  // the smallest such step; the value must be positive

  double value() const;
  TickStep next() const;  // the next greater one
  double minor() const;   // the distance of the small ticks between
  int decimals() const;   // that a multiple of it needs

 private:
  TickStep(int mantissa, int exponent) : mantissa_(mantissa), exponent_(exponent) {}

  int mantissa_;
  int exponent_;
};

// Sizes of the marks in pixels.
struct MarkStyle {
  float tick = 6.0F;
  float minor_tick = 3.0F;
  float gap = 4.0F;            // between a tick and its label, and between labels
  float minor_spacing = 4.0F;  // small ticks that would stand closer are left out

  static MarkStyle for_font(int height);
};

struct MarkLabel {
  std::string text;
  bool caption = false;      // names the axis and the unit
  glm::vec3 anchor{0.0F};    // model coordinates
  glm::vec2 position{0.0F};  // of the lower left corner, in whole pixels of the viewport
  glm::vec2 offset{0.0F};    // of that corner from the anchor's projection
  glm::ivec2 size{0};        // pixels
};

struct ScaleMarks {
  std::vector<glm::vec3> ticks;  // pairs, normalised device coordinates
  std::vector<MarkLabel> labels;
};

// Size of a text in pixels.
using MeasureText = std::function<glm::ivec2(const std::string& text, bool caption)>;

// Marks on one edge per axis of the box, on the outline of what the viewer sees: the lowest one or, of
// upright edges, the leftmost. An axis that points at the viewer has none. Labels neither overlap nor leave
// the viewport; where there is no room for them the step grows. Extents in millimetres, as a range has them.
ScaleMarks scale_marks(const Camera& camera, const glm::vec3& extent, const MarkStyle& style,
                       const MeasureText& measure);

}  // namespace oct
