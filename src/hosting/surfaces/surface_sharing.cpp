#include "hosting/surfaces/surface_sharing.h"

#include <atomic>
#include <stdexcept>

#include "hosting/surfaces/direct3d_sharing.h"
#include "hosting/surfaces/host_buffer_object.h"

namespace oct {
namespace {

std::atomic<SurfaceSharing> currentSharing{hasDirect3D ? SurfaceSharing::direct3D
                                                       : SurfaceSharing::hostMemory};

class HostBufferSource : public AbstractBufferSource {
 public:
  std::unique_ptr<HandOffBuffer> createBuffer(std::int32_t index) override {
    return std::make_unique<HostBufferObject>(index);
  }
};

}  // namespace

void setSurfaceSharing(int value) {
  const auto kind = static_cast<SurfaceSharing>(value);
  if (kind != SurfaceSharing::direct3D && kind != SurfaceSharing::hostMemory) {
    throw std::invalid_argument("Invalid surface sharing selected. ");
  }
  if (kind == SurfaceSharing::direct3D && !hasDirect3D) throw std::runtime_error(direct3DNotSupported);
  currentSharing = kind;
}

SurfaceSharing surfaceSharing() {
  return currentSharing;
}

std::unique_ptr<AbstractBufferSource> openBufferSource(SurfaceSharing kind) {
  if (kind == SurfaceSharing::direct3D) return openDirect3DBufferSource();
  return std::make_unique<HostBufferSource>();
}

}  // namespace oct
