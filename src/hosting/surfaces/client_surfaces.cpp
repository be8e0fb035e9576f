#include "hosting/surfaces/client_surfaces.h"

#include <cstring>
#include <limits>
#include <stdexcept>
#include <vector>

#include "hosting/surfaces/direct3d_sharing.h"
#include "oct_rendering/oct_rendering.h"

namespace oct {
namespace {

class HostClientSurface : public AbstractClientSurface {
 public:
  HostClientSurface(std::uint32_t width, std::uint32_t height)
      : pixels_(static_cast<std::size_t>(width) * height * 4),
        surface_{width, height, width * 4, pixels_.data()} {}
  void* pointer() override { return &surface_; }

 private:
  std::vector<unsigned char> pixels_;
  OctHostSurface surface_;
};

void copy_host_surface(const OctHostSurface& source, const OctHostSurface& destination) {
  for (std::size_t y = 0; y < destination.height; ++y) {
    const unsigned char* const from =
        source.pixels + y * source.height / destination.height * source.stride_bytes;
    unsigned char* const to = destination.pixels + y * destination.stride_bytes;
    if (source.width == destination.width) {
      std::memcpy(to, from, static_cast<std::size_t>(source.width) * 4);
      continue;
    }
    for (std::size_t x = 0; x < destination.width; ++x) {
      std::memcpy(to + x * 4, from + x * source.width / destination.width * 4, 4);
    }
  }
}

}  // namespace

void* ClientSurfaces::create(SurfaceSharing kind, std::uint32_t width, std::uint32_t height) {
  if (width == 0 || height == 0) throw std::invalid_argument("A surface must not be empty. ");
  if (width > std::numeric_limits<std::uint32_t>::max() / 4 / height) {
    throw std::invalid_argument("The surface is too large. ");
  }
  std::unique_ptr<AbstractClientSurface> surface;
  if (kind == SurfaceSharing::direct3d) {
    surface = create_direct3d_surface(width, height);
  } else {
    surface = std::make_unique<HostClientSurface>(width, height);
  }
  void* const pointer = surface->pointer();
  const std::lock_guard lock(mutex_);
  surfaces_[pointer] = std::move(surface);
  return pointer;
}

void ClientSurfaces::destroy(void* surface) {
  std::unique_ptr<AbstractClientSurface> removed;  // dies after the lock
  const std::lock_guard lock(mutex_);
  const auto entry = surfaces_.find(surface);
  if (entry == surfaces_.end()) throw std::invalid_argument("The specified surface is unknown. ");
  removed = std::move(entry->second);
  surfaces_.erase(entry);
}

void ClientSurfaces::copy(SurfaceSharing kind, void* source, void* destination) {
  if (!source || !destination) throw std::invalid_argument("A surface to copy must not be null. ");
  if (source == destination) return;
  if (kind == SurfaceSharing::direct3d) {
    copy_direct3d_surface(source, destination);
  } else {
    copy_host_surface(*static_cast<OctHostSurface*>(source), *static_cast<OctHostSurface*>(destination));
  }
}

// Never destroyed: surfaces that a client forgot must not be released while the library is being unloaded.
ClientSurfaces& client_surfaces() {
  static ClientSurfaces& instance = *new ClientSurfaces;
  return instance;
}

}  // namespace oct
