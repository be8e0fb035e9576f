// Exports of control loops and of the surfaces that go with them.
#include <cstddef>
#include <limits>
#include <optional>
#include <utility>

#include "api/guard.h"
#include "api/handles.h"
#include "hosting/loop/opengl_control_loop.h"
#include "hosting/loop/render_trace.h"
#include "hosting/surfaces/client_surfaces.h"
#include "oct_rendering/oct_rendering.h"

using oct::OpenGLControlLoop;
using oct::api::guarded;
using oct::api::guarded_unposted;

namespace {

OpenGLControlLoop& loop(OpenGLControlLoopHandle handle) {
  return oct::api::checked<OpenGLControlLoop>(handle, "Invalid OpenGLControlLoopHandle specified. ");
}

void render(OpenGLControlLoopHandle handle, int id) {
  OpenGLControlLoop& target = loop(handle);
  oct::trace_render_call(id);
  target.request(id);
}

void check_snapshot(int width, int height, const void* data) {
  if (!data) throw std::invalid_argument("Valid data pointer must be provided to take snapshot. ");
  if (width < 0 || height < 0) throw std::invalid_argument("Snapshot sizes must not be negative. ");
  constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
  if (height > 0 && static_cast<std::size_t>(width) > most / 4 / static_cast<std::size_t>(height)) {
    throw std::invalid_argument("The snapshot is too large. ");
  }
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

void deleteOpenGLControlLoop(OpenGLControlLoopHandle Handle) {
  guarded(__func__, [&] {
    loop(Handle);
    oct::api::delete_object<OpenGLControlLoop>(Handle, [](OpenGLControlLoop& ended) { ended.end(); });
  });
}

void registerOpenGLControlLoopRenderCallback(OpenGLControlLoopHandle Handle, OctRenderFunction Render) {
  guarded(__func__, [&] {
    OpenGLControlLoop& target = loop(Handle);
    if (Render) target.set_rendering_callback(Render);
  });
}

void registerOpenGLControlLoopCallback(OpenGLControlLoopHandle Handle, OctImageReadyFunction ImageReady) {
  guarded(__func__, [&] {
    std::optional<oct::ImageReadyCallback> callback;
    if (ImageReady) callback.emplace(ImageReady);
    loop(Handle).set_image_ready_callback(std::move(callback));
  });
}

void renderOpenGLControlLoop(OpenGLControlLoopHandle Handle) {
  guarded_unposted([&] { render(Handle, 0); });
}

void renderMultOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Id) {
  guarded_unposted([&] { render(Handle, Id); });
}

void snapshotOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Width, int Height, void* Data) {
  guarded(__func__, [&] {
    OpenGLControlLoop& target = loop(Handle);
    check_snapshot(Width, Height, Data);
    target.snapshot(static_cast<std::uint32_t>(Width), static_cast<std::uint32_t>(Height), Data);
  });
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
                 [&] { return oct::client_surfaces().create(loop(Handle).sharing(), Width, Height); });
}

void copyDXSurface(OpenGLControlLoopHandle Handle, void* Source, void* Destination) {
  guarded(__func__, [&] { oct::client_surfaces().copy(loop(Handle).sharing(), Source, Destination); });
}

void destroyDXSurface(OpenGLControlLoopHandle Handle, void* Surface) {
  guarded(__func__, [&] {
    // A surface is known without its loop, which may be gone.
    if (Handle && oct::client_surfaces().destroy(Surface)) return;
    loop(Handle);
    throw std::invalid_argument("The specified surface is unknown. ");
  });
}
