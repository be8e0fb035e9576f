// The library's handles as objects, and its pending errors as failures.
#pragma once

#include <oct_rendering/oct_rendering.h>

#include <cstdint>
#include <type_traits>
#include <vector>

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
    std::vector<std::uint8_t> pixels;
    renderPixels(size, pixels, draw);
    return toPicture(size, pixels);
  }

  // The same without turning them into a picture: BGRA, the bottom row first. Memory is kept from call to
  // call.
  template <class Draw>
  void renderPixels(PictureSize size, std::vector<std::uint8_t>& pixels, Draw draw) {
    checked(beginOffscreenFrame, handle_, size.width, size.height);
    draw();
    pixels.resize(std::size_t{size.width} * size.height * 4);
    checked(finishOffscreenFrame, handle_, static_cast<void*>(pixels.data()));
  }

 private:
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

// A volume renderer, initialised in the context that is current. The context must outlive it.
class VolumeRendererOwner {
 public:
  VolumeRendererOwner();
  ~VolumeRendererOwner();
  VolumeRendererOwner(const VolumeRendererOwner&) = delete;
  VolumeRendererOwner& operator=(const VolumeRendererOwner&) = delete;

  VolumeRendererHandle handle() const { return handle_; }

 private:
  VolumeRendererHandle handle_;
};

// A volume renderer and the uploaded volume that it draws.
class VolumeRendering {
 public:
  VolumeRendering();
  ~VolumeRendering();
  VolumeRendering(const VolumeRendering&) = delete;
  VolumeRendering& operator=(const VolumeRendering&) = delete;

  VolumeRendererHandle renderer() const { return renderer_.handle(); }
  OfflineRenderingHandle offline() const { return offline_; }

 private:
  VolumeRendererOwner renderer_;
  OfflineRenderingHandle offline_ = nullptr;
};

// A volume renderer and the live volumes that it draws.
class LiveRendering {
 public:
  LiveRendering();
  // No source may be running with it, and the frame after its end must have been drawn.
  ~LiveRendering();
  LiveRendering(const LiveRendering&) = delete;
  LiveRendering& operator=(const LiveRendering&) = delete;

  VolumeRendererHandle renderer() const { return renderer_.handle(); }
  LiveVolumeRenderingHandle live() const { return live_; }

 private:
  VolumeRendererOwner renderer_;
  LiveVolumeRenderingHandle live_ = nullptr;
};

}  // namespace oct::app
