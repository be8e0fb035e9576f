#include "hosting/surfaces/direct3d_sharing.h"

#include "core/exception.h"

namespace oct {
namespace {

std::unique_ptr<AbstractBufferSource> open_direct3d_source() {
  throw OpenGLError(direct3d_not_supported);
}

std::unique_ptr<AbstractClientSurface> create_direct3d_surface(std::uint32_t, std::uint32_t) {
  throw OpenGLError(direct3d_not_supported);
}

void copy_direct3d_surface(void*, void*) {
  throw OpenGLError(direct3d_not_supported);
}

}  // namespace

constexpr SurfaceKind direct3d9_surfaces{SurfaceSharing::direct3d, false, open_direct3d_source,
                                         create_direct3d_surface, copy_direct3d_surface};

}  // namespace oct
