// Where a volume stands before the viewer. Pure arithmetic, no OpenGL.
#pragma once

#include <glm/glm.hpp>

#include "core/picture_part.h"

namespace oct {

inline float radians_of(float degrees) {
  return degrees * 3.1415927F / 180.0F;
}

struct Viewport {
  int width = 0;
  int height = 0;

  bool operator==(const Viewport&) const = default;
};

// What a client sets. Angles in degrees.
struct View {
  float angle_x = 0.0F;
  float angle_y = 0.0F;
  glm::vec3 translation{0.0F};
  double zoom = 40.0;
  bool perspective = true;

  bool operator==(const View&) const = default;
};

// Physical extent of the volume, in any unit: x is axial, y and z are lateral. The model is scaled so that
// the box's half diagonal is 1 on the scale of half edges, whatever the unit; depth grows downwards.
struct Range {
  glm::vec3 extent{1.0F};
  glm::vec3 model_scale{1.0F, -1.0F, 1.0F};

  bool operator==(const Range&) const = default;
};

Range range_of(double axial, double lateral1, double lateral2);

// Brings an angle into -180..180 by whole turns.
double wrapped_angle(double degrees);

// How far before the eye sight begins.
constexpr float sight_begins = 0.01F;

// The picture is laid out as a whole, and drawn where the target shows it.
struct Camera {
  Viewport viewport;  // of the picture
  Viewport target;
  glm::ivec2 first_pixel{0};  // of the target, in the picture
  glm::mat4 modelview{1.0F};
  glm::mat4 element_modelview{1.0F};
  glm::mat4 whole_projection{1.0F};
  glm::mat4 to_target{1.0F};   // from device coordinates of the picture
  glm::mat4 projection{1.0F};  // both
  glm::mat3 normal{1.0F};
};

// The near plane lies at 3 and the far one at 8 before the viewer, with the orthographic projection at -10 and
// 10, and farther apart where the box needs it.
Camera camera_of(const View& view, const Range& range, Viewport viewport);

// The camera of the part's whole, drawing on a target that shows the part.
Camera camera_of(const View& view, const Range& range, const PicturePart& part, Viewport target);

}  // namespace oct
