#include "volume/surface.h"

namespace oct {

void Surface::set(int, int, double scale, const float*) {
  scale_ = scale;
}
void Surface::draw(const VolumeFrame&) {}

}  // namespace oct
