#include "hosting/surfaces/renderer_info.h"

#include <algorithm>
#include <array>
#include <exception>

#include "core/log.h"
#include "gl/context/current_context.h"
#include "gl/context/opengl_context.h"
#include "gl/context/opengl_loader.h"
#include "gl/gl.h"
#include "hosting/host/opengl_host.h"
#include "hosting/surfaces/surface_sharing.h"

namespace oct {
namespace {

// Opened and closed again, as the buffers of a control open it: that a driver has the extension does not mean that it
// opens the device.
bool works(const SurfaceKind& kind) {
  if (!kind.available) return false;
  const auto source = kind.open_source();
  return source && !source->device_removed();
}

std::uint32_t sharings() {
  std::uint32_t bits = 0;
  for (const SurfaceSharing sharing : {SurfaceSharing::direct3d, SurfaceSharing::host_memory}) {
    if (works(surface_kind(sharing))) bits |= 1U << static_cast<int>(sharing);
  }
  return bits;
}

// Either extension counts in kilobytes. ATI's: all, the largest block, of main memory all, of that the largest block.
std::uint64_t free_video_memory() {
  std::array<GLint, 4> kilobytes{};
  if (GLEW_NVX_gpu_memory_info) {
    glGetIntegerv(GL_GPU_MEMORY_INFO_CURRENT_AVAILABLE_VIDMEM_NVX, kilobytes.data());
  } else if (GLEW_ATI_meminfo) {
    glGetIntegerv(GL_TEXTURE_FREE_MEMORY_ATI, kilobytes.data());
  }
  return static_cast<std::uint64_t>(std::max(kilobytes[0], 0)) * 1024;
}

RendererInfo info_of_current() {
  RendererInfo info;
  info.vendor = gl::opengl_text(GL_VENDOR);
  info.renderer = gl::opengl_text(GL_RENDERER);
  info.version = gl::opengl_text(GL_VERSION);
  const gl::Version version = gl::current_driver().version;
  info.max_texture_size = static_cast<std::uint32_t>(gl::integer(GL_MAX_TEXTURE_SIZE));
  if (version >= gl::Version{1, 2})
    info.max_3d_texture_size = static_cast<std::uint32_t>(gl::integer(GL_MAX_3D_TEXTURE_SIZE));
  if (version < gl::Version{3, 3}) return info;  // the library draws nothing there
  gl::require_opengl();
  info.sharings = sharings();
  info.free_video_memory = free_video_memory();
  return info;
}

}  // namespace

RendererInfo renderer_info() {
  if (gl::is_context_current()) return info_of_current();
  const gl::RestoreCurrent at_end;
  const auto host = OpenGLHost::acquire();
  gl::OpenGLContext context(host->window());
  context.makeCurrent();
  return info_of_current();
}

}  // namespace oct
