// Direct3D 9Ex surfaces that OpenGL renders into. One source per platform; where there is no Direct3D
// everything here throws.
#pragma once

#include "hosting/surfaces/surface_sharing.h"

namespace oct {

inline constexpr const char* direct3DNotSupported =
    "Ressouce sharing between OpenGL and DirectX not supported. ";

extern const bool hasDirect3D;

std::unique_ptr<AbstractBufferSource> openDirect3DBufferSource();

std::unique_ptr<AbstractClientSurface> createDirect3DSurface(std::uint32_t width, std::uint32_t height);

// The whole source into the whole destination, without a filter.
void copyDirect3DSurface(void* source, void* destination);

}  // namespace oct
