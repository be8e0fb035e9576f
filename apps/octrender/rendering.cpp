#include "rendering.h"

#include <array>
#include <string>

#include "failure.h"

namespace oct::app {
namespace {

// Destructors cannot report; what is left pending would be taken for an error of the next call.
void discardPendingErrors() {
  // One text of the library never goes away, so a loop until none is pending might not end.
  for (int i = 0; i < 16 && getRendererError(nullptr, 0) != 0; ++i) {
  }
}

}  // namespace

void throwPendingError() {
  std::array<char, 4096> text{};
  if (getRendererError(text.data(), static_cast<int>(text.size())) == 0) return;
  throw Failure(ExitCode::RenderingFailed, "rendering failed: " + std::string(text.data()));
}

OffscreenTarget::OffscreenTarget() : handle_(checked(createOffscreenTarget)) {}

OffscreenTarget::~OffscreenTarget() {
  clearOffscreenTarget(handle_);
  discardPendingErrors();
}

DisplayRenderer::DisplayRenderer() : handle_(checked(createDisplayRendering)) {
  try {
    checked(initDisplayRendering, handle_);
  } catch (...) {
    clearDisplayRendering(handle_);
    throw;
  }
}

DisplayRenderer::~DisplayRenderer() {
  uninitDisplayRendering(handle_);
  clearDisplayRendering(handle_);
  discardPendingErrors();
}

VolumeRendererOwner::VolumeRendererOwner() : handle_(checked(createVolumeRenderer)) {
  try {
    checked(initializeVolumeRenderer, handle_);
  } catch (...) {
    deleteVolumeRenderer(handle_);
    throw;
  }
}

VolumeRendererOwner::~VolumeRendererOwner() {
  uninitializeVolumeRenderer(handle_);
  deleteVolumeRenderer(handle_);
  discardPendingErrors();
}

VolumeRendering::VolumeRendering() : offline_(checked(createOfflineRendering)) {
  try {
    checked(setOfflineRenderingRenderer, offline_, renderer());
  } catch (...) {
    clearOfflineRendering(offline_);
    throw;
  }
}

VolumeRendering::~VolumeRendering() {
  clearOfflineRendering(offline_);
  discardPendingErrors();
}

LiveRendering::LiveRendering() : live_(checked(createLiveRendering)) {
  try {
    checked(setLiveVolumeRenderingRenderer, live_, renderer());
  } catch (...) {
    clearLiveRendering(live_);
    throw;
  }
}

LiveRendering::~LiveRendering() {
  clearLiveRendering(live_);
  discardPendingErrors();
}

}  // namespace oct::app
