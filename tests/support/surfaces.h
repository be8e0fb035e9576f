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

// Keeps the Direct3D device alive as well, and lets its Present do nothing: nobody sees the hidden window,
// and the virtual screen's answer to every frame is what thousands of them wait for.
std::shared_ptr<void> withoutPresenting(SurfaceSharing kind);

// What is held of Direct3D and of the interop: references to the device, registered objects, open interop
// devices.
int heldReferences(SurfaceSharing kind);

// Copies frames of one size and shows them all at once. Each read-back from Direct3D waits for it; here
// Direct3D copies every frame as it comes, and one read-back serves many.
class FrameCollector {
 public:
  FrameCollector(SurfaceSharing kind, int width, int height);
  ~FrameCollector();
  void add(void* surface);
  std::vector<Picture> take();  // what was added since

 private:
  struct Tiles;
  std::vector<Picture> pictures_;
  std::unique_ptr<Tiles> tiles_;  // of Direct3D
};

Picture surfacePicture(SurfaceSharing kind, void* surface);
Picture hostSurfacePicture(void* surface);
Picture direct3DSurfacePicture(void* surface);  // on Windows

}  // namespace oct::test
