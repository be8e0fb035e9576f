// A lit height map over the two lateral axes.
#pragma once

#include "volume/volume_frame.h"

namespace oct {

class Surface {
 public:
  // Row by row; throws std::invalid_argument and changes nothing on misuse.
  void set(int width, int height, double scale, const float* values);

  // A depth of the data on the scale of the mesh.
  double onMeshScale(double depth) const { return 2.0 * depth / scale_ - 1.0; }

  bool empty() const { return true; }
  void draw(const VolumeFrame& frame);
  void release() {}

 private:
  double scale_ = 1.0;
};

}  // namespace oct
