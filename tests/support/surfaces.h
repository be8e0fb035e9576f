// Surfaces that the library hands out, as pictures. One source per platform.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "hosting/surfaces/surface_sharing.h"
#include "support/pictures.h"

namespace oct::test {

// The kinds of this platform.
std::vector<SurfaceSharing> surface_sharings();

// Makes the kind usable on a machine whose driver does not have it, and chooses it for controls to come.
void choose_sharing(SurfaceSharing kind);

// Keeps the Direct3D device alive between controls: making one takes Wine a tenth of a second.
std::shared_ptr<void> keep_direct3d(SurfaceSharing kind);

// What is held of Direct3D and of the interop: references to the device, registered
// objects, open interop devices.
int held_references(SurfaceSharing kind);

// What was done against the rules of the interop since this was asked last.
std::vector<std::string> sharing_faults();

Picture surface_picture(SurfaceSharing kind, void* surface);
Picture host_surface_picture(void* surface);
Picture direct3d_surface_picture(void* surface);  // on Windows

}  // namespace oct::test
