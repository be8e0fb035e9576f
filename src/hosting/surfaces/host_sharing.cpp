#include "hosting/surfaces/host_sharing.h"

#include <cstring>
#include <vector>

#include "hosting/surfaces/host_buffer_object.h"
#include "oct_rendering/oct_rendering.h"

namespace oct {
namespace {

class HostBufferSource : public AbstractBufferSource {
 public:
  std::unique_ptr<HandOffBuffer> create_buffer(std::int32_t index, gl::PixelFormat format) override {
    return std::make_unique<HostBufferObject>(index, format);
  }
};

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

std::unique_ptr<AbstractBufferSource> open_host_source() {
  return std::make_unique<HostBufferSource>();
}

std::unique_ptr<AbstractClientSurface> create_host_surface(std::uint32_t width, std::uint32_t height) {
  return std::make_unique<HostClientSurface>(width, height);
}

void copy_host_surface(void* from_surface, void* to_surface) {
  const auto& source = *static_cast<const OctHostSurface*>(from_surface);
  const auto& destination = *static_cast<const OctHostSurface*>(to_surface);
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

constexpr SurfaceKind host_surfaces{SurfaceSharing::host_memory, true, open_host_source, create_host_surface,
                                    copy_host_surface};

}  // namespace oct
