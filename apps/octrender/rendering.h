// The library's handles as objects, and its pending errors as failures.
#pragma once

#include <oct_rendering/oct_rendering.h>

#include <type_traits>

#include "picture.h"

namespace oct::app {

// Throws the pending error, if there is one.
void throwPendingError();

// Calls a function of the library and throws its error.
template <class Function, class... Arguments>
auto checked(Function function, Arguments... arguments) {
  if constexpr (std::is_void_v<decltype(function(arguments...))>) {
    function(arguments...);
    throwPendingError();
  } else {
    const auto result = function(arguments...);
    throwPendingError();
    return result;
  }
}

// A context of its own, current on the thread that made it, and the frames drawn in it.
class OffscreenTarget {
 public:
  OffscreenTarget();
  ~OffscreenTarget();
  OffscreenTarget(const OffscreenTarget&) = delete;
  OffscreenTarget& operator=(const OffscreenTarget&) = delete;

  // Draws one frame with the function and takes its pixels.
  template <class Draw>
  Picture render(PictureSize size, Draw draw) {
    checked(beginOffscreenFrame, handle_, size.width, size.height);
    draw();
    return finishFrame(size);
  }

 private:
  Picture finishFrame(PictureSize size);

  OffscreenTargetHandle handle_;
};

// A renderer of B-scans, initialised in the context that is current. The context must outlive it.
class DisplayRenderer {
 public:
  DisplayRenderer();
  ~DisplayRenderer();
  DisplayRenderer(const DisplayRenderer&) = delete;
  DisplayRenderer& operator=(const DisplayRenderer&) = delete;

  DisplayRenderingHandle handle() const { return handle_; }

 private:
  DisplayRenderingHandle handle_;
};

// A volume renderer and the volume it draws, initialised in the context that is current. The context must outlive them.
class VolumeRendering {
 public:
  VolumeRendering();
  ~VolumeRendering();
  VolumeRendering(const VolumeRendering&) = delete;
  VolumeRendering& operator=(const VolumeRendering&) = delete;

  VolumeRendererHandle renderer() const { return renderer_; }
  OfflineRenderingHandle offline() const { return offline_; }

 private:
  void release();

  VolumeRendererHandle renderer_ = nullptr;
  OfflineRenderingHandle offline_ = nullptr;
};

}  // namespace oct::app
