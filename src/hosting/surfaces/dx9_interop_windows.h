// Owners of WGL_NV_DX_interop objects.
#pragma once

#include <memory>

#include "hosting/surfaces/dx9_device_windows.h"

namespace oct {

// The interop device of the current context. Used and closed with that context current.
class InteropDevice {
 public:
  // Null when the driver gives none. Throws "Ressouce sharing between OpenGL and DirectX not supported. "
  // without the extension.
  static std::unique_ptr<InteropDevice> open(std::shared_ptr<DX9Device> device);

  ~InteropDevice();
  InteropDevice(const InteropDevice&) = delete;
  InteropDevice& operator=(const InteropDevice&) = delete;

  HANDLE handle() const { return handle_; }
  const DX9Device& device() const { return *device_; }

 private:
  InteropDevice(std::shared_ptr<DX9Device> device, HANDLE handle)
      : device_(std::move(device)), handle_(handle) {}

  std::shared_ptr<DX9Device> device_;
  HANDLE handle_;
};

// A Direct3D texture registered under an OpenGL name. May be empty.
class InteropObject {
 public:
  InteropObject() = default;
  ~InteropObject();
  InteropObject(const InteropObject&) = delete;
  InteropObject& operator=(const InteropObject&) = delete;

  // Logs the system's error number on failure and stays empty.
  void register_texture(const InteropDevice& device, IDirect3DTexture9* texture, unsigned name);

  // Throws "Could not unregister shared object. " and keeps the object on failure.
  void unregister();

  HANDLE device_handle() const { return device_; }
  HANDLE handle() const { return object_; }

 private:
  HANDLE device_ = nullptr;
  HANDLE object_ = nullptr;
};

// OpenGL's turn with a shared texture. However a frame ends, the texture is unlocked.
class InteropLock {
 public:
  // Throws std::runtime_error with the given text on failure, and for an empty object.
  InteropLock(const InteropObject& object, const char* failure);
  ~InteropLock();
  InteropLock(const InteropLock&) = delete;
  InteropLock& operator=(const InteropLock&) = delete;

  void unlock(const char* failure);  // throws the text on failure

 private:
  const HANDLE device_;
  HANDLE object_;  // null once unlocked
};

}  // namespace oct
