// There is no window: contexts are made on an EGL device display, or on Mesa's surfaceless platform where EGL
// offers no GPU, and are used without a surface.
#include "gl/context/opengl_window.h"

#include <array>
#include <cstdio>
#include <cstring>
#include <mutex>
#include <string>

#include <EGL/egl.h>
#include <EGL/eglext.h>

#include "core/console.h"
#include "core/exception.h"
#include "core/immortal.h"
#include "core/log.h"
#include "gl/context/context_identity.h"
#include "gl/context/egl_api_linux.h"
#include "gl/trace/debugging.h"

namespace oct::gl {
namespace {

// EGL has no message texts of its own.
std::string text_of(EGLint code) {
  switch (code) {
    case EGL_SUCCESS:
      return "EGL reports no reason (EGL_SUCCESS)";
    case EGL_NOT_INITIALIZED:
      return "EGL is not initialised (EGL_NOT_INITIALIZED)";
    case EGL_BAD_ACCESS:
      return "The context is current on another thread, "
             "or one of another window system is current on this one (EGL_BAD_ACCESS)";
    case EGL_BAD_ALLOC:
      return "Not enough memory (EGL_BAD_ALLOC)";
    case EGL_BAD_CONFIG:
      return "Not a frame buffer configuration (EGL_BAD_CONFIG)";
    case EGL_BAD_CONTEXT:
      return "Not an OpenGL context (EGL_BAD_CONTEXT)";
    case EGL_BAD_DISPLAY:
      return "Not an EGL display (EGL_BAD_DISPLAY)";
    case EGL_BAD_MATCH:
      return "Arguments do not match (EGL_BAD_MATCH)";
    case EGL_BAD_PARAMETER:
      return "Invalid argument (EGL_BAD_PARAMETER)";
    case EGL_CONTEXT_LOST:
      return "The context was lost in a power event (EGL_CONTEXT_LOST)";
    default: {
      char text[32];
      std::snprintf(text, sizeof text, "EGL error 0x%04X", static_cast<unsigned>(code));
      return text;
    }
  }
}

// A context that another thread has, or that of another window system, stands in the way.
Exception failure(const char* what, EGLint code = eglGetError()) {
  const std::string text = what + text_of(code);
  switch (code) {
    case EGL_BAD_ACCESS:
      return StateError(text);
    case EGL_BAD_ALLOC:
      return MemoryError(text);
    default:
      return OpenGLError(text);
  }
}

template <class Function>
Function entry_point(const char* name) {
  return reinterpret_cast<Function>(eglGetProcAddress(name));
}

bool contains(const char* extensions, const char* name) {
  return extensions && std::strstr(extensions, name);
}

// The display of the process, and why there is none as long as there is none.
class Display {
 public:
  // Throws when there is none, and tries again next time: what was missing may be there by then.
  EGLDisplay open() {
    const std::lock_guard lock(mutex_);
    failure_ = EGL_SUCCESS;
    if (opened_ == EGL_NO_DISPLAY) opened_ = open_gpu();
    if (opened_ == EGL_NO_DISPLAY) opened_ = open_surfaceless();
    if (opened_ == EGL_NO_DISPLAY) {
      write_error_and_throw(
          failure("An error occured. Could not create hidden window for OpenGL output: ", failure_));
    }
    return opened_;
  }

 private:
  bool initialise(EGLDisplay display) {
    if (display == EGL_NO_DISPLAY || eglInitialize(display, nullptr, nullptr) != EGL_TRUE) {
      failure_ = eglGetError();
      return false;
    }
    const OpenGLApi api;
    return static_cast<bool>(api);
  }

  EGLDisplay open_gpu();
  EGLDisplay open_surfaceless();

  std::mutex mutex_;
  EGLDisplay opened_ = EGL_NO_DISPLAY;
  EGLint failure_ = EGL_SUCCESS;  // of the last attempt; EGL's own is gone by the next call
};

// The first GPU, or no display. EGL lists the software renderer as a device as well; it comes last by the
// surfaceless platform, so that a machine with a GPU never draws in software unnoticed.
EGLDisplay Display::open_gpu() {
  const char* const client_extensions = eglQueryString(EGL_NO_DISPLAY, EGL_EXTENSIONS);
  if (!contains(client_extensions, "EGL_EXT_platform_device")) return EGL_NO_DISPLAY;
  const auto query_devices = entry_point<PFNEGLQUERYDEVICESEXTPROC>("eglQueryDevicesEXT");
  const auto query_string = entry_point<PFNEGLQUERYDEVICESTRINGEXTPROC>("eglQueryDeviceStringEXT");
  const auto get_display = entry_point<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
  if (!query_devices || !query_string || !get_display) return EGL_NO_DISPLAY;
  std::array<EGLDeviceEXT, 16> devices{};
  EGLint count = 0;
  if (!query_devices(static_cast<EGLint>(devices.size()), devices.data(), &count)) return EGL_NO_DISPLAY;
  for (EGLint i = 0; i < count; ++i) {
    const EGLDeviceEXT device = devices[static_cast<std::size_t>(i)];
    if (contains(query_string(device, EGL_EXTENSIONS), "EGL_MESA_device_software")) continue;
    const EGLDisplay display = get_display(EGL_PLATFORM_DEVICE_EXT, device, nullptr);
    if (initialise(display)) return display;
  }
  return EGL_NO_DISPLAY;
}

EGLDisplay Display::open_surfaceless() {
  const auto get_display = entry_point<PFNEGLGETPLATFORMDISPLAYEXTPROC>("eglGetPlatformDisplayEXT");
  if (!get_display) return EGL_NO_DISPLAY;
  const EGLDisplay display = get_display(EGL_PLATFORM_SURFACELESS_MESA, EGL_DEFAULT_DISPLAY, nullptr);
  return initialise(display) ? display : EGL_NO_DISPLAY;
}

// Opened once per process and never terminated: termination would take the contexts of every other user of
// the same display with it.
EGLDisplay open_display() {
  return immortal<Display>().open();
}

}  // namespace

struct OpenGLWindow::Native {
  std::mutex mutex;
  EGLDisplay display = EGL_NO_DISPLAY;
  EGLConfig config = nullptr;

  Native() {
    log() << "Creating hidden Window";
    display = open_display();
    // The same request as on Windows; depth is asked for with 24 bits, the most that EGL drivers offer.
    constexpr std::array<EGLint, 11> attributes{EGL_SURFACE_TYPE,
                                                EGL_PBUFFER_BIT,
                                                EGL_RENDERABLE_TYPE,
                                                EGL_OPENGL_BIT,
                                                EGL_BUFFER_SIZE,
                                                24,
                                                EGL_DEPTH_SIZE,
                                                24,
                                                EGL_CONFIG_CAVEAT,
                                                EGL_DONT_CARE,
                                                EGL_NONE};
    EGLint count = 0;
    if (!eglChooseConfig(display, attributes.data(), &config, 1, &count) || count == 0) {
      write_error_and_throw(
          failure("An error occured. Pixel format for OpenGL window could not be chosen. "));
    }
  }
};

OpenGLWindow::OpenGLWindow() : native_(std::make_unique<Native>()) {}
OpenGLWindow::~OpenGLWindow() = default;

ContextHandle OpenGLWindow::createContext() {
  const std::lock_guard lock(native_->mutex);
  const OpenGLApi api;
  // Debuggers replay core contexts that were made with attributes.
  constexpr std::array<EGLint, 9> to_debug{EGL_CONTEXT_MAJOR_VERSION,
                                           3,
                                           EGL_CONTEXT_MINOR_VERSION,
                                           3,
                                           EGL_CONTEXT_OPENGL_PROFILE_MASK,
                                           EGL_CONTEXT_OPENGL_CORE_PROFILE_BIT,
                                           EGL_CONTEXT_OPENGL_DEBUG,
                                           EGL_TRUE,
                                           EGL_NONE};
  const EGLContext context = eglCreateContext(native_->display, native_->config, EGL_NO_CONTEXT,
                                              debugging() ? to_debug.data() : nullptr);
  if (context == EGL_NO_CONTEXT) {
    throw failure("An error occured. OpenGL context could not be created: ");
  }
  return context;
}

void OpenGLWindow::makeCurrent(ContextHandle context) {
  const std::lock_guard lock(native_->mutex);
  forget_current_identity();
  if (eglGetCurrentContext() == context) return;
  if (!eglMakeCurrent(native_->display, EGL_NO_SURFACE, EGL_NO_SURFACE, context)) {
    write_error_and_throw(failure("An error occured. "));
  }
}

void OpenGLWindow::makeUncurrent() {
  const std::lock_guard lock(native_->mutex);
  forget_current_identity();
  if (eglGetCurrentContext() == EGL_NO_CONTEXT) return;
  const OpenGLApi api;
  if (!eglMakeCurrent(native_->display, EGL_NO_SURFACE, EGL_NO_SURFACE, EGL_NO_CONTEXT)) {
    write_error("An error occured making context uncurrent: " + std::to_string(eglGetError()) +
                ". This error is ignored.");
  }
}

void OpenGLWindow::deleteContext(ContextHandle context) {
  const std::lock_guard lock(native_->mutex);
  if (!eglDestroyContext(native_->display, context)) {
    throw failure("An error occured. OpenGL context could not be deleted: ");
  }
}

}  // namespace oct::gl
