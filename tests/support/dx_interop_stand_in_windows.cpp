#include "support/dx_interop_stand_in.h"

#include <algorithm>
#include <list>
#include <mutex>
#include <set>
#include <stdexcept>
#include <utility>

#include <d3d9.h>

#include "gl/gl.h"
#include "hosting/surfaces/dx9_device_windows.h"
// After gl.h, which it needs.
#include <GL/wglew.h>

namespace oct::test {
namespace {

// Marks a texture that has got its share handle. The mark dies with the texture.
constexpr GUID shared_mark{0x6a1d3c52, 0x0f1b, 0x4b7e, {0x91, 0x2e, 0x5d, 0x20, 0x44, 0x8a, 0x6c, 0x01}};

struct Device {
  IDirect3DDevice9* direct3d;
};

struct Object {
  const Device* owner;
  ComOwner<IDirect3DTexture9> texture;
  GLuint name;
  HGLRC context = wglGetCurrentContext();  // the name is one of this context
  D3DSURFACE_DESC description{};
  ComOwner<IDirect3DDevice9> device;
  ComOwner<IDirect3DSurface9> memory;  // the way from OpenGL's texture to Direct3D's
  bool locked = false;

  Object(const Device* interop, IDirect3DTexture9* shared, GLuint opengl_name)
      : owner(interop), texture(shared), name(opengl_name) {
    texture->AddRef();
    texture->GetLevelDesc(0, &description);
    IDirect3DDevice9* direct3d = nullptr;
    texture->GetDevice(&direct3d);
    device.reset(direct3d);
    IDirect3DSurface9* surface = nullptr;
    device->CreateOffscreenPlainSurface(description.Width, description.Height, description.Format,
                                        D3DPOOL_SYSTEMMEM, &surface, nullptr);
    memory.reset(surface);
  }
};

struct State {
  std::mutex mutex;
  std::set<std::string> failures;
  std::vector<std::string> faults;
  std::list<Device> devices;
  std::list<Object> objects;

  bool enter(const std::string& function) { return failures.erase(function) == 0; }

  // False, and the fault kept once, when the rule is broken.
  bool hold(bool rule, const std::string& otherwise) {
    if (!rule && std::count(faults.begin(), faults.end(), otherwise) == 0) faults.push_back(otherwise);
    return rule;
  }

  bool is_open(HANDLE device) {
    return hold(
        std::any_of(devices.begin(), devices.end(), [&](const Device& any) { return &any == device; }),
        "A device that is not open. ");
  }

  // The object, if the device is open, the object its own and the object's context current.
  Object* usable(HANDLE device, HANDLE handle, const std::string& doing) {
    if (!is_open(device)) return nullptr;
    const auto object =
        std::find_if(objects.begin(), objects.end(), [&](const Object& any) { return &any == handle; });
    if (!hold(object != objects.end() && object->owner == device, doing + " of an unknown object. ") ||
        !hold(object->context == wglGetCurrentContext(), doing + " without the object's context. ")) {
      return nullptr;
    }
    return &*object;
  }
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
  auto* const direct3d = static_cast<IDirect3DDevice9*>(device);
  const bool is_new = std::none_of(state->devices.begin(), state->devices.end(),
                                   [&](const Device& any) { return any.direct3d == direct3d; });
  if (!state->hold(wglGetCurrentContext(), "A device opened without a context. ") ||
      !state->hold(is_new, "A device opened twice. ") || !state->enter("Open")) {
    SetLastError(ERROR_OPEN_FAILED);
    return nullptr;
  }
  state->devices.push_back({direct3d});
  return &state->devices.back();
}

BOOL WINAPI close_device(HANDLE device) {
  const std::lock_guard lock(state->mutex);
  if (!state->is_open(device)) return FALSE;
  state->hold(std::none_of(state->objects.begin(), state->objects.end(),
                           [&](const Object& object) { return object.owner == device; }),
              "A device closed that has objects. ");
  state->devices.remove_if([&](const Device& any) { return &any == device; });
  return TRUE;
}

BOOL WINAPI share_handle(void* resource, HANDLE) {
  const std::lock_guard lock(state->mutex);
  auto* const texture = static_cast<IDirect3DTexture9*>(resource);
  char mark = 0;
  DWORD size = sizeof mark;
  const bool is_new = texture->GetPrivateData(shared_mark, &mark, &size) == D3DERR_NOTFOUND;
  if (!state->hold(is_new, "A texture shared twice. ") || !state->enter("Share")) return FALSE;
  texture->SetPrivateData(shared_mark, &mark, sizeof mark, 0);
  return TRUE;
}

HANDLE WINAPI register_object(HANDLE device, void* resource, GLuint name, GLenum type, GLenum access) {
  const std::lock_guard lock(state->mutex);
  auto* const texture = static_cast<IDirect3DTexture9*>(resource);
  char mark = 0;
  DWORD size = sizeof mark;
  const auto is_taken = [&](const Object& any) {
    return any.texture.get() == texture || (any.name == name && any.context == wglGetCurrentContext());
  };
  const bool may =
      state->hold(wglGetCurrentContext(), "An object registered without a context. ") &&
      state->is_open(device) &&
      state->hold(SUCCEEDED(texture->GetPrivateData(shared_mark, &mark, &size)),
                  "An object registered without a share handle. ") &&
      state->hold(std::none_of(state->objects.begin(), state->objects.end(), is_taken),
                  "An object or name registered twice. ") &&
      state->hold(type == GL_TEXTURE_2D && access == WGL_ACCESS_WRITE_DISCARD_NV, "Registered otherwise. ");
  if (!may || !state->enter("Register")) {
    SetLastError(ERROR_NOT_SUPPORTED);
    return nullptr;
  }
  Object& object = state->objects.emplace_back(static_cast<const Device*>(device), texture, name);
  const D3DSURFACE_DESC& description = object.description;
  GLint unpack = 0;  // the client's
  glGetIntegerv(GL_PIXEL_UNPACK_BUFFER_BINDING, &unpack);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, 0);
  glBindTexture(GL_TEXTURE_2D, name);
  glTexParameteri(GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
  glTexImage2D(GL_TEXTURE_2D, 0, GL_RGBA8, static_cast<GLsizei>(description.Width),
               static_cast<GLsizei>(description.Height), 0, GL_BGRA, GL_UNSIGNED_BYTE, nullptr);
  glBindTexture(GL_TEXTURE_2D, 0);
  glBindBuffer(GL_PIXEL_UNPACK_BUFFER, static_cast<GLuint>(unpack));
  return &object;
}

BOOL WINAPI unregister_object(HANDLE device, HANDLE handle) {
  const std::lock_guard lock(state->mutex);
  const Object* const object = state->usable(device, handle, "Unregistering");
  if (!object || !state->hold(!object->locked, "A locked object unregistered. ") ||
      !state->enter("Unregister")) {
    return FALSE;
  }
  state->objects.remove_if([&](const Object& any) { return &any == object; });
  return TRUE;
}

BOOL WINAPI lock_objects(HANDLE device, GLint count, HANDLE* handles) {
  const std::lock_guard lock(state->mutex);
  Object* const object = state->usable(device, handles[0], "Locking");
  if (!object || !state->hold(!object->locked && count == 1, "An object locked twice. ") ||
      !state->enter("Lock")) {
    SetLastError(ERROR_LOCK_FAILED);
    return FALSE;
  }
  object->locked = true;
  return TRUE;
}

// Keeps the fault if the framebuffer that is bound to the target has a texture that Direct3D has now.
void check_target(GLenum target, const std::string& doing) {
  GLint framebuffer = 0;
  glGetIntegerv(target == GL_READ_FRAMEBUFFER ? GL_READ_FRAMEBUFFER_BINDING : GL_DRAW_FRAMEBUFFER_BINDING,
                &framebuffer);
  if (framebuffer == 0) return;
  GLint name = 0;
  glGetFramebufferAttachmentParameteriv(target, GL_COLOR_ATTACHMENT0, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_TYPE,
                                        &name);
  if (name != GL_TEXTURE) return;
  glGetFramebufferAttachmentParameteriv(target, GL_COLOR_ATTACHMENT0, GL_FRAMEBUFFER_ATTACHMENT_OBJECT_NAME,
                                        &name);
  for (const Object& object : state->objects) {
    const bool is_this = object.name == static_cast<GLuint>(name) && object.context == wglGetCurrentContext();
    state->hold(!is_this || object.locked, doing + " as a target while Direct3D has it. ");
  }
}

BOOL WINAPI unlock_objects(HANDLE device, GLint count, HANDLE* handles) {
  const std::lock_guard lock(state->mutex);
  Object* const object = state->usable(device, handles[0], "Unlocking");
  if (!object || !state->hold(object->locked && count == 1, "An object unlocked that is not locked. ") ||
      !state->enter("Unlock")) {
    SetLastError(ERROR_NOT_LOCKED);
    return FALSE;
  }
  object->locked = false;
  for (const GLenum target : {GL_DRAW_FRAMEBUFFER, GL_READ_FRAMEBUFFER}) {
    check_target(target, "A texture stays bound");
  }
  publish(*object);
  return TRUE;
}

BOOL WINAPI object_access(HANDLE, GLenum) {
  return TRUE;
}

PFNWGLGETEXTENSIONSSTRINGARBPROC real_extensions = nullptr;

const char* WINAPI extensions(HDC device_context) {
  const char* const real = real_extensions(device_context);
  if (!real) return nullptr;  // no context is current
  thread_local std::string list;
  list = std::string(real) + " WGL_NV_DX_interop";
  return list.c_str();
}

PFNGLBINDFRAMEBUFFERPROC opengl_bind_framebuffer = nullptr;
PFNGLFRAMEBUFFERTEXTURE2DPROC opengl_framebuffer_texture = nullptr;

void GLAPIENTRY bind_framebuffer(GLenum target, GLuint framebuffer) {
  opengl_bind_framebuffer(target, framebuffer);
  const std::lock_guard lock(state->mutex);
  check_target(target, "A texture is bound");
}

void GLAPIENTRY framebuffer_texture(GLenum target, GLenum attachment, GLenum kind, GLuint name, GLint level) {
  opengl_framebuffer_texture(target, attachment, kind, name, level);
  const std::lock_guard lock(state->mutex);
  check_target(target, "A texture is attached");
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
  if (present) {
    opengl_bind_framebuffer = std::exchange(__glewBindFramebuffer, bind_framebuffer);
    opengl_framebuffer_texture = std::exchange(__glewFramebufferTexture2D, framebuffer_texture);
  } else {
    __glewBindFramebuffer = opengl_bind_framebuffer;
    __glewFramebufferTexture2D = opengl_framebuffer_texture;
  }
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

std::vector<std::string> DxInteropStandIn::take_faults() {
  const std::lock_guard lock(state->mutex);
  return std::exchange(state->faults, {});
}

int DxInteropStandIn::registered_objects() const {
  const std::lock_guard lock(state->mutex);
  return static_cast<int>(state->objects.size());
}

int DxInteropStandIn::locked_objects() const {
  const std::lock_guard lock(state->mutex);
  return static_cast<int>(std::count_if(state->objects.begin(), state->objects.end(),
                                        [](const Object& any) { return any.locked; }));
}

int DxInteropStandIn::open_devices() const {
  const std::lock_guard lock(state->mutex);
  return static_cast<int>(state->devices.size());
}

}  // namespace oct::test
