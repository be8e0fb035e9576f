// Surfaces that the library hands out, as pictures. One source per platform.
#pragma once

#include <memory>
#include <ostream>
#include <vector>

#include "hosting/surfaces/surface_sharing.h"
#include "support/pictures.h"

namespace oct {

inline void PrintTo(SurfaceSharing kind, std::ostream* stream) {
  *stream << (kind == SurfaceSharing::direct3D ? "Direct3D" : "host memory");
}

}  // namespace oct

namespace oct::test {

// The kinds of this platform.
std::vector<SurfaceSharing> surfaceSharings();

// Makes the kind usable on a machine whose driver does not have it, and chooses it for controls to come.
void chooseSharing(SurfaceSharing kind);

// Keeps the Direct3D device alive between controls: making one takes Wine a tenth of a second.
std::shared_ptr<void> keepDirect3D(SurfaceSharing kind);

// What is held of Direct3D and of the interop: references to the device, registered objects, open interop
// devices.
int heldReferences(SurfaceSharing kind);

Picture surfacePicture(SurfaceSharing kind, void* surface);
Picture hostSurfacePicture(void* surface);
Picture direct3DSurfacePicture(void* surface);  // on Windows

}  // namespace oct::test
