#include <windows.h>

#include <mutex>
#include <optional>
#include <stdexcept>
#include <string>

#include "core/console.h"
#include "core/exception.h"
#include "core/log.h"
#include "core/platform.h"
#include "gl/opengl_window.h"

namespace oct::gl {
namespace {

constexpr const char* className = "OpenGLWindow";

[[noreturn]] void fail(const std::string& message) {
  writeError(message);
  throw Exception(message);
}

// The window class, registered while at least one window exists: several windows share it.
class WindowClass {
 public:
  WindowClass() {
    const std::lock_guard lock(mutex);
    if (users == 0) registerClass();
    ++users;
  }

  ~WindowClass() {
    const std::lock_guard lock(mutex);
    if (--users == 0) UnregisterClassA(className, nullptr);
  }

  WindowClass(const WindowClass&) = delete;
  WindowClass& operator=(const WindowClass&) = delete;

 private:
  static void registerClass() {
    WNDCLASSEXA record{};
    record.cbSize = sizeof record;
    record.style = CS_HREDRAW | CS_VREDRAW;
    record.lpfnWndProc = DefWindowProcA;
    record.lpszClassName = className;
    if (!RegisterClassExA(&record)) {
      fail("An error occured. Could not register window class (" + std::string(className) +
           ") for graphics output: " + std::to_string(GetLastError()));
    }
  }

  static inline std::mutex mutex;
  static inline int users = 0;
};

}  // namespace

struct OpenGLWindow::Native {
  std::mutex mutex;
  std::optional<WindowClass> windowClass;
  HWND window = nullptr;
  HDC deviceContext = nullptr;

  Native() {
    {
      const std::lock_guard lock(mutex);
      createWindow();
    }
    try {
      setUpDeviceContext();
    } catch (...) {
      destroy();
      throw;
    }
  }

  ~Native() { destroy(); }

  void createWindow() {
    log() << "Creating hidden Window";
    windowClass.emplace();
    window = CreateWindowExA(0, className, "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 300, nullptr, nullptr, nullptr,
                             nullptr);
    if (!window) {
      fail("An error occured. Could not create hidden window for OpenGL output: " + systemErrorText());
    }
  }

  void setUpDeviceContext() {
    deviceContext = GetDC(window);
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
      fail("An error occured. Pixel format for OpenGL window could not be chosen. " + systemErrorText());
    }
    if (!SetPixelFormat(deviceContext, format, &descriptor)) {
      fail("An error occured. Pixel format for OpenGL window could not be set. " + systemErrorText());
    }
  }

  void destroy() {
    if (deviceContext) ReleaseDC(window, deviceContext);
    const std::lock_guard lock(mutex);
    if (!DestroyWindow(window)) writeError("Failed to destroy window." + std::to_string(GetLastError()));
    windowClass.reset();
  }
};

OpenGLWindow::OpenGLWindow() : native_(std::make_unique<Native>()) {}
OpenGLWindow::~OpenGLWindow() = default;

ContextHandle OpenGLWindow::createContext() {
  const std::lock_guard lock(native_->mutex);
  const HGLRC context = wglCreateContext(native_->deviceContext);
  if (!context) throw Exception("An error occured. OpenGL context could not be created: " + systemErrorText());
  return context;
}

void OpenGLWindow::makeCurrent(ContextHandle context) {
  const std::lock_guard lock(native_->mutex);
  if (wglGetCurrentContext() == context) return;
  if (!wglMakeCurrent(native_->deviceContext, static_cast<HGLRC>(context))) {
    fail("An error occured. " + systemErrorText());
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
