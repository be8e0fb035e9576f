#include "hosting/surfaces/dx9_interop_windows.h"

#include <array>
#include <cstring>
#include <map>
#include <mutex>
#include <utility>

#include "core/console.h"
#include "core/exception.h"
#include "core/immortal.h"
#include "core/log.h"
#include "gl/context/wgl_extension_windows.h"
#include "gl/gl.h"
#include "hosting/surfaces/direct3d_sharing.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

namespace oct {
namespace {

struct OpenHandle {
  HANDLE handle = nullptr;
  int uses = 0;
};

// The mutex is held while a device is opened or closed, so that nobody opens one that is just being closed.
struct OpenHandles {
  std::mutex mutex;
  std::map<const DX9Device*, OpenHandle> by_device;
};

OpenHandles& open_handles() {
  return immortal<OpenHandles>();
}

}  // namespace

void require_interop() {
  if (!gl::has_wgl_extension("WGL_NV_DX_interop") || !wglDXOpenDeviceNV) {
    throw OpenGLError(direct3d_not_supported);
  }
}

std::optional<AdapterLuid> opengl_adapter() {
  if (!GLEW_EXT_memory_object_win32 || !glGetUnsignedBytevEXT) return {};
  std::array<GLubyte, GL_LUID_SIZE_EXT> bytes{};
  glGetUnsignedBytevEXT(GL_DEVICE_LUID_EXT, bytes.data());
  AdapterLuid luid = 0;
  static_assert(sizeof luid == sizeof bytes);
  std::memcpy(&luid, bytes.data(), sizeof luid);
  if (luid == 0) return {};  // the driver left it as it was
  return luid;
}

std::unique_ptr<InteropDevice> InteropDevice::open(std::shared_ptr<DX9Device> device) {
  require_interop();
  const std::lock_guard lock(open_handles().mutex);
  OpenHandle& shared = open_handles().by_device[device.get()];
  if (!shared.handle) shared.handle = wglDXOpenDeviceNV(device->get());
  if (!shared.handle) {
    log() << "The driver does not open the interop with Direct3D: " << GetLastError();
    open_handles().by_device.erase(device.get());
    return nullptr;
  }
  auto use = std::unique_ptr<InteropDevice>(new InteropDevice(std::move(device), shared.handle));
  ++shared.uses;
  return use;
}

InteropDevice::~InteropDevice() {
  const std::lock_guard lock(open_handles().mutex);
  const auto shared = open_handles().by_device.find(device_.get());
  if (--shared->second.uses > 0) return;
  open_handles().by_device.erase(shared);
  if (!wglDXCloseDeviceNV(handle_)) log() << "The interop could not be closed: " << GetLastError();
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

void InteropObject::lock(const char* failure) {
  if (locked_) return;
  if (!object_) throw OpenGLError(failure);
  if (!wglDXLockObjectsNV(device_, 1, &object_)) {
    log() << "The shared texture could not be locked: " << GetLastError();
    throw OpenGLError(failure);
  }
  locked_ = true;
}

void InteropObject::unlock(const char* failure) {
  if (!locked_) throw OpenGLError(failure);
  if (!wglDXUnlockObjectsNV(device_, 1, &object_)) {
    log() << "The shared texture could not be unlocked: " << GetLastError();
    throw OpenGLError(failure);
  }
  locked_ = false;
}

void InteropObject::unregister() {
  constexpr const char* failure = "Could not unregister shared object. ";
  if (!object_ || !wglDXUnregisterObjectNV) return;
  if (locked_) unlock(failure);
  if (!wglDXUnregisterObjectNV(device_, object_)) throw OpenGLError(failure);
  object_ = nullptr;
}

}  // namespace oct
