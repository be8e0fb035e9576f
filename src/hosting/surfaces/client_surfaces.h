// The surfaces that clients made through the library, process-wide.
#pragma once

#include <map>
#include <memory>
#include <mutex>

#include "hosting/surfaces/surface_sharing.h"

namespace oct {

class ClientSurfaces {
 public:
  void* create(SurfaceSharing kind, std::uint32_t width, std::uint32_t height);

  // Throws std::invalid_argument for a pointer that create did not return or that was destroyed before.
  void destroy(void* surface);

  // The whole source, stretched over the whole destination without a filter. Either may also be a surface
  // that an image-ready callback is being given.
  static void copy(SurfaceSharing kind, void* source, void* destination);

 private:
  std::mutex mutex_;
  std::map<void*, std::unique_ptr<AbstractClientSurface>> surfaces_;
};

ClientSurfaces& client_surfaces();

}  // namespace oct
