// Exports of control loops and of the surfaces that go with them.
#include <cstddef>
#include <limits>
#include <memory>

#include "api/api_frame.h"
#include "hosting/surfaces/client_surfaces.h"
#include "hosting/loop/opengl_control_loop.h"
#include "hosting/loop/render_trace.h"
#include "oct_rendering/oct_rendering.h"

using oct::OpenGLControlLoop;
using oct::api::frame;
using oct::api::unpostedFrame;

namespace {

OpenGLControlLoop& loop(OpenGLControlLoopHandle handle) {
  return oct::api::checked<OpenGLControlLoop>(handle, "Invalid OpenGLControlLoopHandle specified. ");
}

void render(OpenGLControlLoopHandle handle, int id) {
  OpenGLControlLoop& target = loop(handle);
  oct::traceRenderCall(id);
  target.request(id);
}

void checkSnapshot(int width, int height, const void* data) {
  if (!data) throw std::invalid_argument("Valid data pointer must be provided to take snapshot. ");
  if (width < 0 || height < 0) throw std::invalid_argument("Snapshot sizes must not be negative. ");
  constexpr auto most = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max());
  if (height > 0 && static_cast<std::size_t>(width) > most / 4 / static_cast<std::size_t>(height)) {
    throw std::invalid_argument("The snapshot is too large. ");
  }
}

}  // namespace

OpenGLControlLoopHandle createOpenGLControlLoop(void) {
  return frame(__func__, [] {
    return oct::api::handleOf<OctOpenGLControlLoop>(new OpenGLControlLoop(nullptr, nullptr, nullptr));
  });
}

OpenGLControlLoopHandle createOpenGLControlLoopCB(OctLoopFunction Init, OctLoopFunction Uninit,
                                                  OctErrorFunction Error) {
  return frame(__func__, [&] {
    return oct::api::handleOf<OctOpenGLControlLoop>(
        new OpenGLControlLoop(std::make_unique<oct::Callback>(Init), std::make_unique<oct::Callback>(Uninit),
                              Error ? std::make_unique<oct::ErrorCallback>(Error) : nullptr));
  });
}

void deleteOpenGLControlLoop(OpenGLControlLoopHandle Handle) {
  frame(__func__, [&] {
    loop(Handle).check_deletable();
    delete &loop(Handle);
  });
}

void registerOpenGLControlLoopRenderCallback(OpenGLControlLoopHandle Handle, OctRenderFunction Render) {
  frame(__func__, [&] {
    OpenGLControlLoop& target = loop(Handle);
    if (Render) target.set_rendering_callback(std::make_unique<oct::RenderingCallback>(Render));
  });
}

void registerOpenGLControlLoopCallback(OpenGLControlLoopHandle Handle, OctImageReadyFunction ImageReady) {
  frame(__func__, [&] {
    loop(Handle).set_image_ready_callback(ImageReady ? std::make_unique<oct::ImageReadyCallback>(ImageReady)
                                                     : nullptr);
  });
}

void renderOpenGLControlLoop(OpenGLControlLoopHandle Handle) {
  unpostedFrame([&] { render(Handle, 0); });
}

void renderMultOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Id) {
  unpostedFrame([&] { render(Handle, Id); });
}

void snapshotOpenGLControlLoop(OpenGLControlLoopHandle Handle, int Width, int Height, void* Data) {
  frame(__func__, [&] {
    OpenGLControlLoop& target = loop(Handle);
    checkSnapshot(Width, Height, Data);
    target.snapshot(static_cast<std::uint32_t>(Width), static_cast<std::uint32_t>(Height), Data);
  });
}

void resizeOpenGLControlLoop(OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height) {
  frame(__func__, [&] { loop(Handle).resize(Width, Height); });
}

void OpenGLControlLoopMode(OpenGLControlLoopHandle Handle, unsigned int Mode) {
  frame(__func__, [&] { loop(Handle).set_mode(Mode); });
}

void unlockBuffer(OpenGLControlLoopHandle Handle) {
  frame(__func__, [&] { loop(Handle); });
}

void* createDXSurface(OpenGLControlLoopHandle Handle, unsigned int Width, unsigned int Height) {
  return frame(__func__, [&] { return oct::clientSurfaces().create(loop(Handle).sharing(), Width, Height); });
}

void copyDXSurface(OpenGLControlLoopHandle Handle, void* Source, void* Destination) {
  frame(__func__, [&] { oct::ClientSurfaces::copy(loop(Handle).sharing(), Source, Destination); });
}

void destroyDXSurface(OpenGLControlLoopHandle Handle, void* Surface) {
  frame(__func__, [&] {
    loop(Handle);
    oct::clientSurfaces().destroy(Surface);
  });
}
