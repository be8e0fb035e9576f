#include "support/surfaces.h"

#include <cstring>

#include "oct_rendering/oct_rendering.h"

namespace oct::test {

Picture host_surface_picture(void* surface) {
  const auto& host = *static_cast<OctHostSurface*>(surface);
  Picture picture(static_cast<int>(host.width), static_cast<int>(host.height));
  for (std::size_t y = 0; y < host.height; ++y) {
    std::memcpy(picture.bytes.data() + y * host.width * 4, host.pixels + y * host.stride_bytes,
                static_cast<std::size_t>(host.width) * 4);
  }
  return picture;
}

}  // namespace oct::test
