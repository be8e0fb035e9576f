#include "hosting/surfaces/surface_sharing.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <stdexcept>

#include "core/exception.h"
#include "hosting/surfaces/direct3d_sharing.h"
#include "hosting/surfaces/host_sharing.h"

namespace oct {
namespace {

// The first one that the platform has is the setting at the start.
constexpr std::array<const SurfaceKind*, 2> kinds{&direct3d9_surfaces, &host_surfaces};

std::atomic<SurfaceSharing> current_sharing{
    (*std::find_if(kinds.begin(), kinds.end(), [](const SurfaceKind* kind) {
      return kind->available;
    }))->sharing};

std::atomic<gl::PixelFormat> host_format{gl::PixelFormat::bgra};

}  // namespace

const SurfaceKind& surface_kind(SurfaceSharing sharing) {
  const auto row = std::find_if(kinds.begin(), kinds.end(),
                                [&](const SurfaceKind* kind) { return kind->sharing == sharing; });
  if (row == kinds.end()) throw std::invalid_argument("Invalid surface sharing selected. ");
  return **row;
}

void set_surface_sharing(int value) {
  const SurfaceKind& kind = surface_kind(static_cast<SurfaceSharing>(value));
  if (!kind.available) throw OpenGLError(direct3d_not_supported);
  current_sharing = kind.sharing;
}

SurfaceSharing surface_sharing() {
  return current_sharing;
}

void set_host_pixel_format(int value) {
  host_format = gl::pixel_format_of(value);
}

SurfaceType surfaces_to_come() {
  return {current_sharing, host_format};
}

}  // namespace oct
