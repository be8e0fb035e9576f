// What a control needs of Direct3D surfaces shared with OpenGL. One source per platform.
#pragma once

#include <cstdint>
#include <memory>

#include "hosting/abstract_buffer.h"

namespace oct {

// Opened by a control in its current context, and closed in it.
class DirectSharing {
 public:
  virtual ~DirectSharing() = default;
  virtual std::unique_ptr<AbstractBuffer> createBuffer(std::int32_t index) = 0;
};

bool directSharingExists();

// Null when the driver gives no interop device at this moment. Throws "Ressouce sharing between OpenGL and DirectX not
// supported. " without the extension, and what creating the Direct3D device throws.
std::unique_ptr<DirectSharing> openDirectSharing();

// Surfaces that clients own, in the format of the shared ones. A surface lives until it is destroyed; its device lives
// as long.
void* createDirectSurface(std::uint32_t width, std::uint32_t height);
void copyDirectSurface(void* source, void* destination);  // stretched, without filter
bool ownsDirectSurface(void* surface);
void destroyDirectSurface(void* surface);

}  // namespace oct
