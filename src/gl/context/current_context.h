// What is current on the calling thread. One source per platform.
#pragma once

#include "gl/context/context_identity.h"

namespace oct::gl {

// The context's handle; null when none is current or when it was made by a window
// system other than WGL and EGL.
void* current_context();

bool is_context_current();

// A context with its display and surfaces (WGL: its device context), to be made current again.
class CurrentContext {
 public:
  CurrentContext();  // of the calling thread

  void* handle() const { return context_; }

  // Makes it current on the calling thread. Where it is gone, or current on another one, none is
  // current afterwards.
  void restore() const noexcept;

 private:
  bool is_current() const;
  bool make_current() const;      // false when the system refuses
  static void release_current();  // leaves no context current

  void* display_ = nullptr;  // WGL: the device context
  void* draw_ = nullptr;
  void* read_ = nullptr;
  void* context_ = nullptr;
  ContextIdentity identity_ = no_context;
};

// Makes a context current again at the end of a scope, however that ends, or of its owner: as the first member it
// comes after all others.
class RestoreCurrent {
 public:
  RestoreCurrent() = default;  // the one that is current now
  explicit RestoreCurrent(const CurrentContext& context) : context_(context) {}
  ~RestoreCurrent() {
    if (!dismissed_) context_.restore();
  }
  RestoreCurrent(const RestoreCurrent&) = delete;
  RestoreCurrent& operator=(const RestoreCurrent&) = delete;

  void replace(const CurrentContext& context) { context_ = context; }
  void dismiss() { dismissed_ = true; }

 private:
  CurrentContext context_;
  bool dismissed_ = false;
};

}  // namespace oct::gl
