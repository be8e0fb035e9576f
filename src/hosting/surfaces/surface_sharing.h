// The kinds of surface that a control's frames can be made of, and what each of them can do.
#pragma once

#include <cstdint>
#include <memory>

#include "gl/target/read_back.h"

namespace oct {

class HandOffBuffer;

enum class SurfaceSharing : int { direct3d = 0, host_memory = 1 };

// What tells the surfaces of one control from those of another. Those of Direct3D have a format of its own; for them it
// is always the first.
struct SurfaceType {
  SurfaceType(SurfaceSharing kind, gl::PixelFormat pixels = gl::PixelFormat::bgra)
      : sharing(kind), format(kind == SurfaceSharing::host_memory ? pixels : gl::PixelFormat::bgra) {}
  bool operator==(const SurfaceType&) const = default;

  SurfaceSharing sharing;
  gl::PixelFormat format;
};

// What the buffers of one control have in common.
class AbstractBufferSource {
 public:
  virtual ~AbstractBufferSource() = default;
  virtual std::unique_ptr<HandOffBuffer> create_buffer(std::int32_t index, gl::PixelFormat format) = 0;

  // Whether the device that the buffers are made on is gone for good.
  virtual bool device_removed() const { return false; }
};

// A surface that a client asked for.
class AbstractClientSurface {
 public:
  virtual ~AbstractClientSurface() = default;
  virtual void* pointer() = 0;
};

// A row of the table of kinds. All that differs from kind to kind is behind these functions.
struct SurfaceKind {
  SurfaceSharing sharing;
  bool available;  // on this platform; the functions of a row that is not throw

  // With the control's context current. Null when the system gives none now; it may be asked again.
  std::unique_ptr<AbstractBufferSource> (*open_source)();

  std::unique_ptr<AbstractClientSurface> (*create_surface)(std::uint32_t width, std::uint32_t height);

  // The whole source into the whole destination, stretched without a filter. Both are surfaces of the kind.
  void (*copy)(void* source, void* destination);
};

// Throws std::invalid_argument for an unknown value.
const SurfaceKind& surface_kind(SurfaceSharing sharing);

// The setting for controls to come. Throws std::invalid_argument for an unknown value, an OpenGLError for
// a kind that this platform does not have.
void set_surface_sharing(int value);
SurfaceSharing surface_sharing();

// Likewise, for those whose surfaces are host memory.
void set_host_pixel_format(int value);

SurfaceType surfaces_to_come();

}  // namespace oct
