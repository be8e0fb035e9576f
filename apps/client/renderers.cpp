#include "client/renderers.h"

namespace oct::app {

DisplayRenderer::DisplayRenderer() {
  checked(initDisplayRendering, handle());
}

DisplayRenderer::~DisplayRenderer() {
  uninitDisplayRendering(handle());
}

VolumeRenderer::VolumeRenderer() {
  checked(initializeVolumeRenderer, handle());
}

VolumeRenderer::~VolumeRenderer() {
  uninitializeVolumeRenderer(handle());
}

OfflineRendering::OfflineRendering() {
  checked(setOfflineRenderingRenderer, offline(), renderer());
}

LiveRendering::LiveRendering() {
  checked(setLiveVolumeRenderingRenderer, live(), renderer());
}

}  // namespace oct::app
