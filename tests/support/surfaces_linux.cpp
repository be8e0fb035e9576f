#include "support/surfaces.h"

namespace oct::test {

std::vector<SurfaceSharing> surfaceSharings() {
  return {SurfaceSharing::hostMemory};
}
void chooseSharing(SurfaceSharing kind) {
  setSurfaceSharing(static_cast<int>(kind));
}
std::shared_ptr<void> keepDirect3D(SurfaceSharing) {
  return nullptr;
}
int heldReferences(SurfaceSharing) {
  return 0;
}
Picture surfacePicture(SurfaceSharing, void* surface) {
  return hostSurfacePicture(surface);
}

}  // namespace oct::test
