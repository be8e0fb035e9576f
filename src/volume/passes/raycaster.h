// The ray-cast volume of a frame.
#pragma once

#include "volume/frame/volume_frame.h"
#include "volume/passes/box.h"
#include "volume/passes/surface_positions.h"

namespace oct {

class Raycaster {
 public:
  void release();

  // Blends the volume over what is drawn, as far as the surface, if one is shown. Nothing is drawn of a volume
  // that is not filled yet, and of a dual coloured one without a slice of secondary data.
  void draw(const VolumeFrame& frame, Box& box, Surface& surface);

  // In place of the picture, where a pixel's ray shows the volume, and what is there (pick.glsl): into a target of that
  // pixel alone, whose viewport lies accordingly. The positions of the surface must be those of the frame.
  void pick(const VolumeFrame& frame, Box& box, const glm::uvec2& pixel);

  SurfacePositions& surface_positions() { return surface_positions_; }

 private:
  static bool has_rays(const VolumeFrame& frame);
  void prepare(const RaycastingProgram& program, const VolumeFrame& frame);
  void set_uniforms(const RaycastingProgram& program, const VolumeFrame& frame) const;
  void set_secondary(const RaycastingProgram& program, const VolumeFrame& frame) const;
  void draw_front_faces(const RaycastingProgram& program, const VolumeFrame& frame, Box& box);

  SurfacePositions surface_positions_;
  gl::Geometry cut_face_{"cut face"};
  gl::Geometry face_before_eye_{"face before the eye"};
};

}  // namespace oct
