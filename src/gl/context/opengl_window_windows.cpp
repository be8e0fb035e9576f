#include <windows.h>

#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

#include "core/console.h"
#include "core/exception.h"
#include "core/platform.h"
#include "gl/context/hidden_window_windows.h"
#include "gl/context/opengl_window.h"

namespace oct::gl {

struct OpenGLWindow::Native {
  std::mutex mutex;
  std::optional<HiddenWindow> window;
  HDC deviceContext = nullptr;

  Native() {
    {
      const std::lock_guard lock(mutex);
      window.emplace("OpenGLWindow");
    }
    try {
      setUpDeviceContext();
    } catch (...) {
      destroy();
      throw;
    }
  }

  ~Native() { destroy(); }

  void setUpDeviceContext() {
    deviceContext = GetDC(window->handle());
    if (!deviceContext) throw std::runtime_error("Could not get window device context. ");
    PIXELFORMATDESCRIPTOR descriptor{};
    descriptor.nSize = sizeof descriptor;
    descriptor.nVersion = 1;
    descriptor.dwFlags = PFD_SUPPORT_OPENGL;
    descriptor.iPixelType = PFD_TYPE_RGBA;
    descriptor.cColorBits = 24;
    descriptor.cDepthBits = 32;
    descriptor.iLayerType = PFD_MAIN_PLANE;
    const int format = ChoosePixelFormat(deviceContext, &descriptor);
    if (format == 0) {
      writeErrorAndThrow("An error occured. Pixel format for OpenGL window could not be chosen. " +
                         systemErrorText());
    }
    if (!SetPixelFormat(deviceContext, format, &descriptor)) {
      writeErrorAndThrow("An error occured. Pixel format for OpenGL window could not be set. " +
                         systemErrorText());
    }
  }

  void destroy() {
    if (deviceContext) ReleaseDC(window->handle(), deviceContext);
    const std::lock_guard lock(mutex);
    window.reset();
  }
};

OpenGLWindow::OpenGLWindow() : native_(std::make_unique<Native>()) {}
OpenGLWindow::~OpenGLWindow() = default;

ContextHandle OpenGLWindow::createContext() {
  const std::lock_guard lock(native_->mutex);
  const HGLRC context = wglCreateContext(native_->deviceContext);
  if (!context)
    throw Exception("An error occured. OpenGL context could not be created: " + systemErrorText());
  return context;
}

void OpenGLWindow::makeCurrent(ContextHandle context) {
  const std::lock_guard lock(native_->mutex);
  if (wglGetCurrentContext() == context) return;
  if (!wglMakeCurrent(native_->deviceContext, static_cast<HGLRC>(context))) {
    writeErrorAndThrow("An error occured. " + systemErrorText());
  }
}

void OpenGLWindow::makeUncurrent() {
  const std::lock_guard lock(native_->mutex);
  if (!wglGetCurrentContext()) return;
  if (!wglMakeCurrent(nullptr, nullptr)) {
    writeError("An error occured making context uncurrent: " + std::to_string(GetLastError()) +
               ". This error is ignored.");
  }
}

void OpenGLWindow::deleteContext(ContextHandle context) {
  const std::lock_guard lock(native_->mutex);
  if (!wglDeleteContext(static_cast<HGLRC>(context))) {
    throw Exception("An error occured. OpenGL context could not be deleted: " + systemErrorText());
  }
}

}  // namespace oct::gl
