// A handle of the rendering library for as long as its owner lives.
#pragma once

#include "client/checked.h"

namespace oct::app {

// Errors that clearing leaves behind are nobody's.
template <class Handle>
class RenderingHandle {
 public:
  RenderingHandle(Handle (*create)(), void (*clear)(Handle)) : handle_(checked(create)), clear_(clear) {}
  ~RenderingHandle() {
    clear_(handle_);
    discard_pending_errors();
  }
  RenderingHandle(const RenderingHandle&) = delete;
  RenderingHandle& operator=(const RenderingHandle&) = delete;

  Handle get() const { return handle_; }

 private:
  Handle handle_;
  void (*clear_)(Handle);
};

}  // namespace oct::app
