#include "support/dx_interop_stand_in.h"

#include <mutex>
#include <set>
#include <stdexcept>

#include <d3d9.h>

#include "gl/gl.h"
#include "hosting/surfaces/dx9_device_windows.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

namespace oct::test {
namespace {

struct Object {
  ComOwner<IDirect3DTexture9> texture;
  GLuint name;
  D3DSURFACE_DESC description{};
  ComOwner<IDirect3DDevice9> device;
  ComOwner<IDirect3DSurface9> memory;  // the way from OpenGL's texture to Direct3D's
  bool locked = false;

  Object(IDirect3DTexture9* shared, GLuint opengl_name) : texture(shared), name(opengl_name) {
    texture->AddRef();
    texture->GetLevelDesc(0, &description);
    IDirect3DDevice9* owner = nullptr;
    texture->GetDevice(&owner);
    device.reset(owner);
    IDirect3DSurface9* surface = nullptr;
    device->CreateOffscreenPlainSurface(description.Width, description.Height, description.Format,
                                        D3DPOOL_SYSTEMMEM, &surface, nullptr);
    memory.reset(surface);
  }
};

struct State {
  std::mutex mutex;
  std::set<std::string> failures;
  std::set<IDirect3DDevice9*> devices;
  std::set<Object*> objects;

  bool enter(const std::string& function) { return failures.erase(function) == 0; }
};

State* state = nullptr;

// Copies the OpenGL texture into the Direct3D surface.
void publish(const Object& object) {
  D3DLOCKED_RECT rectangle{};
  if (FAILED(object.memory->LockRect(&rectangle, nullptr, 0)))
    throw std::runtime_error("the stand-in has no memory");
  GLint bound = 0;
  glGetIntegerv(GL_TEXTURE_BINDING_2D, &bound);
  glBindTexture(GL_TEXTURE_2D, object.name);
  glPixelStorei(GL_PACK_ROW_LENGTH, rectangle.Pitch / 4);
  glGetTexImage(GL_TEXTURE_2D, 0, GL_BGRA, GL_UNSIGNED_BYTE, rectangle.pBits);
  glPixelStorei(GL_PACK_ROW_LENGTH, 0);
  glBindTexture(GL_TEXTURE_2D, static_cast<GLuint>(bound));
  object.memory->UnlockRect();
  const auto target = surface_of(*object.texture);
  object.device->UpdateSurface(object.memory.get(), nullptr, target.get(), nullptr);
}

HANDLE WINAPI open_device(void* device) {
  const std::lock_guard lock(state->mutex);
  if (!state->enter("Open")) return nullptr;
  auto* const direct3d = static_cast<IDirect3DDevice9*>(device);
  state->devices.insert(direct3d);
  return direct3d;
}

BOOL WINAPI close_device(HANDLE device) {
  const std::lock_guard lock(state->mutex);
  return state->devices.erase(static_cast<IDirect3DDevice9*>(device)) != 0;
}

BOOL WINAPI share_handle(void*, HANDLE) {
  const std::lock_guard lock(state->mutex);
  return state->enter("Share");
}

HANDLE WINAPI register_object(HANDLE, void* resource, GLuint name, GLenum type, GLenum access) {
  const std::lock_guard lock(state->mutex);
  if (!state->enter("Register") || type != GL_TEXTURE_2D || access != WGL_ACCESS_WRITE_DISCARD_NV) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return nullptr;
  }
  auto* const object = new Object(static_cast<IDirect3DTexture9*>(resource), name);
  const D3DSURFACE_DESC& description = object->description;
  GLint unpack = 0;  // the client's
  glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &unpack);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  glBindTexture(GL_TEXTURE_2D, name);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, static_cast<GLsizei>(description.Width),
               static_cast<GLsizei>(description.Height), 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
  glBindTexture(GL_TEXTURE_2D, 0);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(unpack));
  state->objects.insert(object);
  return object;
}

BOOL WINAPI unregister_object(HANDLE, HANDLE handle) {
  const std::lock_guard lock(state->mutex);
  auto* const object = static_cast<Object*>(handle);
  if (!state->enter("Unregister") || state->objects.erase(object) == 0) return FALSE;
  delete object;
  return TRUE;
}

BOOL WINAPI lock_objects(HANDLE, GLint count, HANDLE* handles) {
  const std::lock_guard lock(state->mutex);
  auto* const object = static_cast<Object*>(handles[0]);
  if (!state->enter("Lock") || count != 1 || !state->objects.contains(object) || object->locked) return FALSE;
  object->locked = true;
  return TRUE;
}

BOOL WINAPI unlock_objects(HANDLE, GLint count, HANDLE* handles) {
  const std::lock_guard lock(state->mutex);
  auto* const object = static_cast<Object*>(handles[0]);
  if (count != 1 || !state->objects.contains(object) || !object->locked) return FALSE;
  object->locked = false;  // also when it is to report failure: nobody could unlock it again
  if (!state->enter("Unlock")) return FALSE;
  publish(*object);
  return TRUE;
}

BOOL WINAPI object_access(HANDLE, GLenum) {
  return TRUE;
}

PFNWGLGETEXTENSIONSSTRINGARBPROC real_extensions = nullptr;

const char* WINAPI extensions(HDC device_context) {
  thread_local std::string list;
  list = std::string(real_extensions(device_context)) + " WGL_NV_DX_interop";
  return list.c_str();
}

void install(bool present) {
  if (present) real_extensions = __wglewGetExtensionsStringARB;
  __wglewGetExtensionsStringARB = present ? extensions : real_extensions;
  __wglewDXOpenDeviceNV = present ? open_device : nullptr;
  __wglewDXCloseDeviceNV = present ? close_device : nullptr;
  __wglewDXSetResourceShareHandleNV = present ? share_handle : nullptr;
  __wglewDXRegisterObjectNV = present ? register_object : nullptr;
  __wglewDXUnregisterObjectNV = present ? unregister_object : nullptr;
  __wglewDXLockObjectsNV = present ? lock_objects : nullptr;
  __wglewDXUnlockObjectsNV = present ? unlock_objects : nullptr;
  __wglewDXObjectAccessNV = present ? object_access : nullptr;
}

}  // namespace

DxInteropStandIn::DxInteropStandIn() {
  state = new State;
  install(true);
}

DxInteropStandIn::~DxInteropStandIn() {
  install(false);
  delete state;
  state = nullptr;
}

void DxInteropStandIn::fail_next(const std::string& function) {
  const std::lock_guard lock(state->mutex);
  state->failures.insert(function);
}

int DxInteropStandIn::registered_objects() const {
  const std::lock_guard lock(state->mutex);
  return static_cast<int>(state->objects.size());
}

int DxInteropStandIn::locked_objects() const {
  const std::lock_guard lock(state->mutex);
  int locked = 0;
  for (const Object* const object : state->objects) locked += object->locked;
  return locked;
}

int DxInteropStandIn::open_devices() const {
  const std::lock_guard lock(state->mutex);
  return static_cast<int>(state->devices.size());
}

}  // namespace oct::test
