// What the hand-off buffers of a control are made of, and surfaces of the same kind for clients.
#pragma once

#include <cstdint>
#include <memory>

namespace oct {

class HandOffBuffer;

enum class SurfaceSharing : int { direct3d = 0, host_memory = 1 };

// The setting for controls to come. Throws std::invalid_argument for an unknown value, std::runtime_error for
// a kind that this platform does not have.
void set_surface_sharing(int value);
SurfaceSharing surface_sharing();

// What the buffers of one control have in common.
class AbstractBufferSource {
 public:
  virtual ~AbstractBufferSource() = default;
  virtual std::unique_ptr<HandOffBuffer> create_buffer(std::int32_t index) = 0;
};

// With the control's context current. Null when the system gives none now; it may be asked again.
std::unique_ptr<AbstractBufferSource> open_buffer_source(SurfaceSharing kind);

// A surface that a client asked for.
class AbstractClientSurface {
 public:
  virtual ~AbstractClientSurface() = default;
  virtual void* pointer() = 0;
};

}  // namespace oct
