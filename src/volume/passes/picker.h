// What lies under one pixel of a frame.
#pragma once

#include <optional>

#include "gl/gl_names.h"
#include "volume/passes/raycaster.h"
#include "volume/passes/sectional_view.h"
#include "volume/passes/surface.h"

namespace oct {

enum class PickedKind { nothing = 0, volume = 1, slice = 2, surface = 3 };

struct VolumePick {
  PickedKind kind = PickedKind::nothing;
  glm::vec3 place{0.0F};  // in the box, along its axes, from 0 to 1
  float value = 0.0F;     // of the volume or the overlay, whichever shows; of a surface nothing
};

// Draws the frame's volume into a target of one pixel, with the very rays of the picture, and reads places and values in
// place of colours.
class Picker {
 public:
  struct Passes {
    Box& box;
    Raycaster& raycaster;
    SectionalView& sections;
    Surface& surface;
  };

  // The pixel lies in the frame's viewport. Leaves framebuffers and viewport as they were.
  VolumePick pick(const VolumeFrame& frame, const Passes& passes, const glm::uvec2& pixel);
  void release();

 private:
  struct Found {
    glm::vec3 place;
    float value;
    float opacity;
  };

  void make_target();
  template <class Draw>
  std::optional<Found> found_by(const VolumeFrame& frame, const glm::uvec2& pixel, Draw&& draw);

  gl::Framebuffer framebuffer_;
  gl::Renderbuffer place_;
  gl::Renderbuffer value_;
  gl::Renderbuffer depth_;
};

}  // namespace oct
