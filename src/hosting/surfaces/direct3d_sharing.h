// Direct3D 9Ex surfaces that OpenGL renders into. One source per platform; where there is no Direct3D
// everything here throws.
#pragma once

#include "hosting/surfaces/surface_sharing.h"

namespace oct {

inline constexpr const char* direct3d_not_supported =
    "Ressouce sharing between OpenGL and DirectX not supported. ";

extern const bool has_direct3d;

std::unique_ptr<AbstractBufferSource> open_direct3d_buffer_source();

std::unique_ptr<AbstractClientSurface> create_direct3d_surface(std::uint32_t width, std::uint32_t height);

// The whole source into the whole destination, without a filter.
void copy_direct3d_surface(void* source, void* destination);

}  // namespace oct
