#include "phantoms/mirror.h"

namespace oct::simulator {

Mirror::Mirror(double depth_mm, double slope, float amplitude)
    : depth_mm_(depth_mm), slope_(slope), amplitude_(amplitude) {}

void Mirror::describe(double x_mm, double, double, DepthProfile& profile) const {
  profile.reflectors.push_back({depth_mm_ + slope_ * x_mm, amplitude_});
}

}  // namespace oct::simulator
