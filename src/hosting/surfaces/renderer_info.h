// What an OpenGL context has to offer: its driver, its limits, the ways in which frames could be handed over.
#pragma once

#include <cstdint>
#include <string>

namespace oct {

struct RendererInfo {
  std::uint32_t sharings = 0;  // a bit for each SurfaceSharing that works
  std::string vendor;
  std::string renderer;
  std::string version;
  std::uint32_t max_texture_size = 0;
  std::uint32_t max_3d_texture_size = 0;
  std::uint64_t free_video_memory = 0;  // bytes; 0 where the driver does not tell
};

// Of the context that is current, whatever its version; without one, of a context that lives as long as the question.
// What was current stays current, and nothing that was opened stays open.
RendererInfo renderer_info();

}  // namespace oct
