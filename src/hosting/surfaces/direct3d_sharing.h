// Direct3D 9Ex surfaces that OpenGL renders into. One source per platform; where there is no Direct3D
// everything here throws.
#pragma once

#include "hosting/surfaces/surface_sharing.h"

namespace oct {

inline constexpr const char* direct3d_not_supported =
    "Ressouce sharing between OpenGL and DirectX not supported. ";

extern const SurfaceKind direct3d9_surfaces;

}  // namespace oct
