#include "support/surfaces.h"

#include <utility>

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
std::shared_ptr<void> withoutPresenting(SurfaceSharing) {
  return nullptr;
}
int heldReferences(SurfaceSharing) {
  return 0;
}
struct FrameCollector::Tiles {};
FrameCollector::FrameCollector(SurfaceSharing, int, int) {}
FrameCollector::~FrameCollector() = default;
void FrameCollector::add(void* surface) {
  pictures_.push_back(hostSurfacePicture(surface));
}
std::vector<Picture> FrameCollector::take() {
  return std::exchange(pictures_, {});
}
Picture surfacePicture(SurfaceSharing, void* surface) {
  return hostSurfacePicture(surface);
}

}  // namespace oct::test
