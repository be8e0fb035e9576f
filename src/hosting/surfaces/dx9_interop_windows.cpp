#include "hosting/surfaces/dx9_interop_windows.h"

#include <stdexcept>
#include <utility>

#include "core/console.h"
#include "core/log.h"
#include "gl/context/wgl_extension_windows.h"
#include "gl/gl.h"
#include "hosting/surfaces/direct3d_sharing.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

namespace oct {

std::unique_ptr<InteropDevice> InteropDevice::open(std::shared_ptr<DX9Device> device) {
  if (!gl::has_wgl_extension("WGL_NV_DX_interop") || !wglDXOpenDeviceNV) {
    throw std::runtime_error(direct3d_not_supported);
  }
  const HANDLE handle = wglDXOpenDeviceNV(device->get());
  if (!handle) return nullptr;
  return std::unique_ptr<InteropDevice>(new InteropDevice(std::move(device), handle));
}

InteropDevice::~InteropDevice() {
  wglDXCloseDeviceNV(handle_);
}

InteropObject::~InteropObject() {
  try {
    unregister();
  } catch (const std::exception& error) {
    write_error(error.what());
  }
}

void InteropObject::register_texture(const InteropDevice& device, IDirect3DTexture9* texture, unsigned name) {
  unregister();
  device_ = device.handle();
  object_ = wglDXRegisterObjectNV(device_, texture, name, GL_TEXTURE_2D, WGL_ACCESS_WRITE_DISCARD_NV);
  if (!object_) log() << "An error occured when creating a shared texture: " << GetLastError();
}

void InteropObject::unregister() {
  if (!object_ || !wglDXUnregisterObjectNV) return;
  if (!wglDXUnregisterObjectNV(device_, object_))
    throw std::runtime_error("Could not unregister shared object. ");
  object_ = nullptr;
}

InteropLock::InteropLock(const InteropObject& object, const char* failure)
    : device_(object.device_handle()), object_(object.handle()) {
  if (!object_ || !wglDXLockObjectsNV(device_, 1, &object_)) throw std::runtime_error(failure);
}

InteropLock::~InteropLock() {
  if (object_) wglDXUnlockObjectsNV(device_, 1, &object_);
}

void InteropLock::unlock(const char* failure) {
  HANDLE object = std::exchange(object_, nullptr);
  if (!wglDXUnlockObjectsNV(device_, 1, &object)) throw std::runtime_error(failure);
}

}  // namespace oct
