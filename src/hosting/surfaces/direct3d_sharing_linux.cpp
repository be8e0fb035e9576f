#include "hosting/surfaces/direct3d_sharing.h"

#include <stdexcept>

namespace oct {

constexpr bool hasDirect3D = false;

std::unique_ptr<AbstractBufferSource> openDirect3DBufferSource() {
  throw std::runtime_error(direct3DNotSupported);
}

std::unique_ptr<AbstractClientSurface> createDirect3DSurface(std::uint32_t, std::uint32_t) {
  throw std::runtime_error(direct3DNotSupported);
}

void copyDirect3DSurface(void*, void*) {
  throw std::runtime_error(direct3DNotSupported);
}

}  // namespace oct
