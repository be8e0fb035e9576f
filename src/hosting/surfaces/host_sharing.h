// Surfaces in host memory.
#pragma once

#include "hosting/surfaces/surface_sharing.h"

namespace oct {

extern const SurfaceKind host_surfaces;

}  // namespace oct
