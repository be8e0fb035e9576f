#include "phantoms/mirror.h"

namespace oct::simulator {

Mirror::Mirror(double depthMm, double slope, float amplitude)
    : depthMm_(depthMm), slope_(slope), amplitude_(amplitude) {}

void Mirror::describe(double xMm, double, double, DepthProfile& profile) const {
  profile.reflectors.push_back({depthMm_ + slope_ * xMm, amplitude_});
}

}  // namespace oct::simulator
