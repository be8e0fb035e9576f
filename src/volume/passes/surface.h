// A lit height map over the two lateral axes.
#pragma once

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"
#include "volume/layout/surface_mesh.h"

namespace oct {

class Surface {
 public:
  // Row by row; throws std::invalid_argument and changes nothing on misuse. A size
  // of zero takes the surface away.
  void set(int width, int height, double scale, const float* values);

  // A depth of the data on the scale of the mesh.
  double on_mesh_scale(double depth) const { return oct::on_mesh_scale(depth, scale_); }

  bool empty() const { return mesh_.vertices.empty(); }
  void draw(const VolumeFrame& frame);
  void release();  // the mesh stays and is uploaded again when it is drawn again

 private:
  void upload();

  double scale_ = 1.0;
  SurfaceMesh mesh_;
  gl::Geometry geometry_;
  bool changed_ = true;  // since the last upload
};

}  // namespace oct
