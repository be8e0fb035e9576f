// Owners of WGL_NV_DX_interop objects.
#pragma once

#include <memory>

#include "hosting/surfaces/dx9_device_windows.h"

namespace oct {

// Throws "Ressouce sharing between OpenGL and DirectX not supported. " if the current context does not have the
// extension.
void require_interop();

// The adapter that the current OpenGL context draws with, where OpenGL tells it.
std::optional<AdapterLuid> opengl_adapter();

// A use of the interop with a Direct3D device. Drivers refuse to open a device twice, so all uses of a device in
// the process share one handle: the first opens it, with its own context current, and the last closes it, with
// whichever context that one has. Used with the context current that it was opened in.
class InteropDevice {
 public:
  // Null when the driver gives none, whose reason is logged. Throws as require_interop().
  static std::unique_ptr<InteropDevice> open(std::shared_ptr<DX9Device> device);

  ~InteropDevice();
  InteropDevice(const InteropDevice&) = delete;
  InteropDevice& operator=(const InteropDevice&) = delete;

  HANDLE handle() const { return handle_; }
  const DX9Device& device() const { return *device_; }

 private:
  InteropDevice(std::shared_ptr<DX9Device> device, HANDLE handle)
      : device_(std::move(device)), handle_(handle) {}

  const std::shared_ptr<DX9Device> device_;
  const HANDLE handle_;
};

// A Direct3D texture registered under an OpenGL name, and whose turn it is with the texture. May be empty. What
// fails leaves the object as it was, so that it can be tried again.
class InteropObject {
 public:
  InteropObject() = default;
  ~InteropObject();  // as unregister, but writes to the error stream what that throws
  InteropObject(const InteropObject&) = delete;
  InteropObject& operator=(const InteropObject&) = delete;

  // Logs the system's error number on failure and stays empty.
  void register_texture(const InteropDevice& device, IDirect3DTexture9* texture, unsigned name);

  // Gives the texture to OpenGL; nothing if OpenGL has it already. Logs the system's error number and throws
  // an OpenGLError with the given text on failure, and for an empty object.
  void lock(const char* failure);

  // Gives it to Direct3D. No framebuffer may be bound that has it. Failures as lock, also if Direct3D has it.
  void unlock(const char* failure);

  // Unlocks first. Throws "Could not unregister shared object. ".
  void unregister();

 private:
  HANDLE device_ = nullptr;
  HANDLE object_ = nullptr;
  bool locked_ = false;
};

}  // namespace oct
