// Exports of control loops and of the surfaces that go with them.
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

#include "api/guard.h"
#include "api/handles.h"
#include "api/with_user.h"
#include "hosting/loop/opengl_control_loop.h"
#include "hosting/loop/render_trace.h"
#include "hosting/surfaces/client_surfaces.h"
#include "oct_rendering/oct_rendering.h"

using oct::OpenGLControlLoop;
using oct::api::guarded;
using oct::api::guarded_unposted;
using oct::api::with_user;
using oct::gl::PixelFormat;

namespace {

OpenGLControlLoop& loop(OpenGLControlLoopHandle handle) {
  return oct::api::checked<OpenGLControlLoop>(handle, "Invalid OpenGLControlLoopHandle specified. ");
}

void render(OpenGLControlLoopHandle handle, int id) {
  OpenGLControlLoop& target = loop(handle);
  oct::trace_render_call(id);
  target.request(id);
}

// A loop keeps its function where none is given.
void set_rendering_callback(OpenGLControlLoopHandle handle, oct::RenderingCallback callback) {
  OpenGLControlLoop& target = loop(handle);
  if (callback) target.set_rendering_callback(std::move(callback));
}

void set_image_ready_callback(OpenGLControlLoopHandle handle, oct::ImageReadyCallback::Function function) {
  std::optional<oct::ImageReadyCallback> callback;
  if (function) callback.emplace(std::move(function));
  loop(handle).set_image_ready_callback(std::move(callback));
}

void check_snapshot(int width, int height, const void* data) {
  if (!data) throw std::invalid_argument("Valid data pointer must be provided to take snapshot. ");
  if (width < 0 || height < 0) throw std::invalid_argument("Snapshot sizes must not be negative. ");
  constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
  if (height > 0 && static_cast<std::size_t>(width) > most / 4 / static_cast<std::size_t>(height)) {
    throw std::invalid_argument("The snapshot is too large. ");
  }
}

void take_snapshot(OpenGLControlLoopHandle handle, int width, int height, PixelFormat format, void* data) {
  OpenGLControlLoop& target = loop(handle);
  check_snapshot(width, height, data);
  target.snapshot(static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height), data, format);
}

}  // namespace

OpenGLControlLoopHandle createOpenGLControlLoop(void) {
  return guarded(__func__, [] {
    return oct::api::handle_of<OctOpenGLControlLoop>(std::make_unique<OpenGLControlLoop>());
  });
}

OpenGLControlLoopHandle createOpenGLControlLoopCB(OctLoopFunction Init, OctLoopFunction Uninit,
                                                  OctErrorFunction Error) {
  return guarded(__func__, [&] {
    return oct::api::handle_of<OctOpenGLControlLoop>(
        std::make_unique<OpenGLControlLoop>(Init, Uninit, oct::ErrorCallback(Error)));
  });
}

OpenGLControlLoopHandle createOpenGLControlLoopCBWithUser(OctLoopFunctionWithUser Init,
                                                          OctLoopFunctionWithUser Uninit,
                                                          OctErrorFunctionWithUser Error, void* user) {
  return guarded(__func__, [&] {
    return oct::api::handle_of<OctOpenGLControlLoop>(std::make_unique<OpenGLControlLoop>(
        with_user<oct::Callback>(Init, user), with_user<oct::Callback>(Uninit, user),
        oct::ErrorCallback(with_user<oct::ErrorCallback::Function>(Error, user))));
  });
}

void deleteOpenGLControlLoop(OpenGLControlLoopHandle Handle) {
  guarded(__func__, [&] {
    loop(Handle);
    oct::api::delete_object<OpenGLControlLoop>(Handle, [](OpenGLControlLoop& ended) { ended.end(); });
  });
}

void registerOpenGLControlLoopRenderCallback(OpenGLControlLoopHandle Handle, OctRenderFunction Render) {
  guarded(__func__, [&] { set_rendering_callback(Handle, Render); });
}

void registerOpenGLControlLoopRenderCallbackWithUser(OpenGLControlLoopHandle Handle,
                                                     OctRenderFunctionWithUser Render, void* user) {
  guarded(__func__, [&] { set_rendering_callback(Handle, with_user<oct::RenderingCallback>(Render, user)); });
}

void registerOpenGLControlLoopCallback(OpenGLControlLoopHandle Handle, OctImageReadyFunction ImageReady) {
  guarded(__func__, [&] { set_image_ready_callback(Handle, ImageReady); });
}

void registerOpenGLControlLoopCallbackWithUser(OpenGLControlLoopHandle Handle,
                                               OctImageReadyFunctionWithUser ImageReady, void* user) {
  guarded(__func__, [&] {
    set_image_ready_callback(Handle, with_user<oct::ImageReadyCallback::Function>(ImageReady, user));
  });
}

void renderOpenGLControlLoop(OpenGLControlLoopHandle Handle) {
  guarded_unposted([&] { render(Handle, 0); });
}

void renderMultOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Id) {
  guarded_unposted([&] { render(Handle, Id); });
}

void snapshotOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Width, int Height, void* Data) {
  guarded(__func__, [&] { take_snapshot(Handle, Width, Height, PixelFormat::bgra, Data); });
}

void snapshotOpenGLControlLoopAs(OpenGLControlLoopHandle Handle, int Width, int Height, int Format,
                                 void* Data) {
  guarded(__func__, [&] { take_snapshot(Handle, Width, Height, oct::gl::pixel_format_of(Format), Data); });
}

void resizeOpenGLControlLoop(OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height) {
  guarded(__func__, [&] { loop(Handle).resize(Width, Height); });
}

void OpenGLControlLoopMode(OpenGLControlLoopHandle Handle, unsigned int Mode) {
  guarded(__func__, [&] { loop(Handle).set_mode(static_cast<OpenGLControlLoop::Mode>(Mode)); });
}

void unlockBuffer(OpenGLControlLoopHandle Handle) {
  guarded(__func__, [&] { loop(Handle); });
}

void* createDXSurface(OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height) {
  return guarded(__func__,
                 [&] { return oct::client_surfaces().create(loop(Handle).surfaces(), Width, Height); });
}

void copyDXSurface(OpenGLControlLoopHandle Handle, void* Source, void* Destination) {
  guarded(__func__, [&] { oct::client_surfaces().copy(loop(Handle).surfaces(), Source, Destination); });
}

void destroyDXSurface(OpenGLControlLoopHandle Handle, void* Surface) {
  guarded(__func__, [&] {
    // A surface is known without its loop, which may be gone.
    if (Handle && oct::client_surfaces().destroy(Surface)) return;
    loop(Handle);
    throw std::invalid_argument("The specified surface is unknown. ");
  });
}
