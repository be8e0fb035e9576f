// The ray-cast volume of a frame.
#pragma once

#include "volume/passes/back_faces.h"
#include "volume/passes/box.h"
#include "volume/frame/volume_frame.h"

namespace oct {

class Raycaster {
 public:
  void create() { backFaces_.create(); }
  void release();

  // Blends the volume over what is drawn. Nothing is drawn of a volume that is not filled yet, and of a dual
  // coloured one without a slice of secondary data.
  void draw(const VolumeFrame& frame, Box& box);

 private:
  void setUniforms(const RaycastingProgram& program, const VolumeFrame& frame) const;
  void setSecondary(const RaycastingProgram& program, const VolumeFrame& frame) const;
  void drawFrontFaces(const RaycastingProgram& program, const VolumeFrame& frame, Box& box);

  BackFaces backFaces_;
  gl::Geometry cutFace_;
};

}  // namespace oct
