// The ray-cast volume of a frame.
#pragma once

#include "volume/back_faces.h"
#include "volume/box.h"
#include "volume/volume_frame.h"

namespace oct {

class Raycaster {
 public:
  void create() { backFaces_.create(); }
  void release();

  // Blends the volume over what is drawn. A dual coloured volume without a slice of secondary data draws
  // nothing.
  void draw(const VolumeFrame& frame, Box& box);

 private:
  void setUniforms(const RaycastingProgram& program, const VolumeFrame& frame) const;
  void setSecondary(const RaycastingProgram& program, const VolumeFrame& frame) const;
  void drawFrontFaces(const RaycastingProgram& program, const VolumeFrame& frame, Box& box);

  BackFaces backFaces_;
  gl::Geometry cutFace_;
};

}  // namespace oct
