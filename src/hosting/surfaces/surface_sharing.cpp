#include "hosting/surfaces/surface_sharing.h"

#include <atomic>
#include <stdexcept>

#include "hosting/surfaces/direct3d_sharing.h"
#include "hosting/surfaces/host_buffer_object.h"

namespace oct {
namespace {

std::atomic<SurfaceSharing> current_sharing{has_direct3d ? SurfaceSharing::direct3d
                                                         : SurfaceSharing::host_memory};

class HostBufferSource : public AbstractBufferSource {
 public:
  std::unique_ptr<HandOffBuffer> create_buffer(std::int32_t index) override {
    return std::make_unique<HostBufferObject>(index);
  }
};

}  // namespace

void set_surface_sharing(int value) {
  const auto kind = static_cast<SurfaceSharing>(value);
  if (kind != SurfaceSharing::direct3d && kind != SurfaceSharing::host_memory) {
    throw std::invalid_argument("Invalid surface sharing selected. ");
  }
  if (kind == SurfaceSharing::direct3d && !has_direct3d) throw std::runtime_error(direct3d_not_supported);
  current_sharing = kind;
}

SurfaceSharing surface_sharing() {
  return current_sharing;
}

std::unique_ptr<AbstractBufferSource> open_buffer_source(SurfaceSharing kind) {
  if (kind == SurfaceSharing::direct3d) return open_direct3d_buffer_source();
  return std::make_unique<HostBufferSource>();
}

}  // namespace oct
