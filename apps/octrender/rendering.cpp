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

Picture OffscreenTarget::finishFrame(PictureSize size) {
  std::vector<std::uint8_t> pixels(std::size_t{size.width} * size.height * 4);
  checked(finishOffscreenFrame, handle_, static_cast<void*>(pixels.data()));
  return toPicture(size, pixels);
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

VolumeRendering::VolumeRendering() : renderer_(checked(createVolumeRenderer)) {
  try {
    offline_ = checked(createOfflineRendering);
    checked(initializeVolumeRenderer, renderer_);
    checked(setOfflineRenderingRenderer, offline_, renderer_);
  } catch (...) {
    release();
    throw;
  }
}

VolumeRendering::~VolumeRendering() {
  release();
  discardPendingErrors();
}

void VolumeRendering::release() {
  clearOfflineRendering(offline_);
  uninitializeVolumeRenderer(renderer_);
  deleteVolumeRenderer(renderer_);
}

}  // namespace oct::app
