// A hidden window with a device context, and OpenGL contexts on it. One source per platform: WGL on Windows,
// EGL without a window system on Linux.
#pragma once

#include <memory>

namespace oct::gl {

using ContextHandle = void*;  // WGL's or EGL's context handle

// Every operation on the window is serialised by the window's own mutex. Failures
// throw with the system's reason.
class OpenGLWindow {
 public:
  OpenGLWindow();
  ~OpenGLWindow();
  OpenGLWindow(const OpenGLWindow&) = delete;
  OpenGLWindow& operator=(const OpenGLWindow&) = delete;

  ContextHandle createContext();
  // On the calling thread; no system call when it is current already.
  void makeCurrent(ContextHandle context);
  void makeUncurrent();  // never throws; no system call when none is current
  void deleteContext(ContextHandle context);

 private:
  struct Native;
  std::unique_ptr<Native> native_;
};

}  // namespace oct::gl
