// The library's renderers as objects. Each is initialised in the context that is
// current, which must outlive it.
#pragma once

#include "client/rendering_handle.h"
#include "oct_rendering/oct_rendering.h"

namespace oct::app {

// A renderer of B-scans.
class DisplayRenderer {
 public:
  DisplayRenderer();
  ~DisplayRenderer();

  DisplayRenderingHandle handle() const { return handle_.get(); }

 private:
  RenderingHandle<DisplayRenderingHandle> handle_{createDisplayRendering, clearDisplayRendering};
};

// A renderer of volumes that come from elsewhere.
class VolumeRenderer {
 public:
  VolumeRenderer();
  ~VolumeRenderer();

  VolumeRendererHandle handle() const { return handle_.get(); }

 private:
  RenderingHandle<VolumeRendererHandle> handle_{createVolumeRenderer, deleteVolumeRenderer};
};

// A volume renderer and the uploaded volume that it draws.
class OfflineRendering {
 public:
  OfflineRendering();

  VolumeRendererHandle renderer() const { return renderer_.handle(); }
  OfflineRenderingHandle offline() const { return offline_.get(); }

 private:
  VolumeRenderer renderer_;
  RenderingHandle<OfflineRenderingHandle> offline_{createOfflineRendering, clearOfflineRendering};
};

// A volume renderer and the live volumes that it draws. At its end no source may be running with it, and the
// frame after the source's end must have been drawn.
class LiveRendering {
 public:
  LiveRendering();

  VolumeRendererHandle renderer() const { return renderer_.handle(); }
  LiveVolumeRenderingHandle live() const { return live_.get(); }

 private:
  VolumeRenderer renderer_;
  RenderingHandle<LiveVolumeRenderingHandle> live_{createLiveRendering, clearLiveRendering};
};

}  // namespace oct::app
