#include "gl/context/opengl_window.h"

#include <mutex>
#include <optional>
#include <string>

#include <windows.h>

#include "core/console.h"
#include "core/exception.h"
#include "core/platform.h"
#include "gl/context/context_identity.h"
#include "gl/context/hidden_window_windows.h"
#include "gl/context/wgl_extension_windows.h"
#include "gl/trace/debugging.h"

namespace oct::gl {
namespace {

// With Windows' own reason. A context that another thread has is in use.
Exception failure(const char* what) {
  const DWORD code = GetLastError();
  const std::string text = what + system_error_text();
  switch (code) {
    case ERROR_BUSY:
      return StateError(text);
    case ERROR_NOT_ENOUGH_MEMORY:
    case ERROR_OUTOFMEMORY:
      return MemoryError(text);
    default:
      return OpenGLError(text);
  }
}

}  // namespace

struct OpenGLWindow::Native {
  std::mutex mutex;
  std::optional<HiddenWindow> window;
  HDC device_context = nullptr;

  Native() {
    {
      const std::lock_guard lock(mutex);
      window.emplace("OpenGLWindow");
    }
    try {
      set_up_device_context();
    } catch (...) {
      destroy();
      throw;
    }
  }

  ~Native() { destroy(); }

  void set_up_device_context() {
    device_context = GetDC(window->handle());
    if (!device_context) throw SystemError("Could not get window device context. ");
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = sizeof descriptor;
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_SUPPORT_OPENGL;
    descriptor.iPixelType = PFD_TYPE_RGBA;
    descriptor.cColorBits = 24;
    descriptor.cDepthBits = 32;
    descriptor.iLayerType = PFD_MAIN_PLANE;
    const int format = ChoosePixelFormat(device_context, &descriptor);
    if (format == 0) {
      write_error_and_throw(
          failure("An error occured. Pixel format for OpenGL window could not be chosen. "));
    }
    if (!SetPixelFormat(device_context, format, &descriptor)) {
      write_error_and_throw(failure("An error occured. Pixel format for OpenGL window could not be set. "));
    }
  }

  void destroy() {
    if (device_context) ReleaseDC(window->handle(), device_context);
    const std::lock_guard lock(mutex);
    window.reset();
  }
};

OpenGLWindow::OpenGLWindow() : native_(std::make_unique<Native>()) {}
OpenGLWindow::~OpenGLWindow() = default;

ContextHandle OpenGLWindow::createContext() {
  const std::lock_guard lock(native_->mutex);
  const HGLRC context =
      debugging() ? create_debug_context(native_->device_context) : wglCreateContext(native_->device_context);
  if (!context) throw failure("An error occured. OpenGL context could not be created: ");
  return context;
}

void OpenGLWindow::makeCurrent(ContextHandle context) {
  const std::lock_guard lock(native_->mutex);
  forget_current_identity();
  if (wglGetCurrentContext() == context) return;
  if (!wglMakeCurrent(native_->device_context, static_cast<HGLRC>(context))) {
    write_error_and_throw(failure("An error occured. "));
  }
}

void OpenGLWindow::makeUncurrent() {
  const std::lock_guard lock(native_->mutex);
  forget_current_identity();
  if (!wglGetCurrentContext()) return;
  if (!wglMakeCurrent(nullptr, nullptr)) {
    write_error("An error occured making context uncurrent: " + std::to_string(GetLastError()) +
                ". This error is ignored.");
  }
}

void OpenGLWindow::deleteContext(ContextHandle context) {
  const std::lock_guard lock(native_->mutex);
  if (!wglDeleteContext(static_cast<HGLRC>(context))) {
    throw failure("An error occured. OpenGL context could not be deleted: ");
  }
}

}  // namespace oct::gl
