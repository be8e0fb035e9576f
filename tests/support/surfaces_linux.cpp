#include "support/surfaces.h"

namespace oct::test {

std::vector<SurfaceSharing> surface_sharings() {
  return {SurfaceSharing::host_memory};
}
void choose_sharing(SurfaceSharing kind) {
  set_surface_sharing(static_cast<int>(kind));
}
std::shared_ptr<void> keep_direct3d(SurfaceSharing) {
  return nullptr;
}
int held_references(SurfaceSharing) {
  return 0;
}
std::vector<std::string> sharing_faults() {
  return {};
}
Picture surface_picture(SurfaceSharing, void* surface) {
  return host_surface_picture(surface);
}

}  // namespace oct::test
