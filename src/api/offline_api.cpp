// Exports of the rendering of uploaded volumes.
#include "api/guard_opengl.h"
#include "api/handles.h"
#include "oct_rendering/oct_rendering.h"
#include "offline/offline_volume_rendering.h"

using oct::OfflineVolumeRendering;
using oct::api::guarded;
using oct::api::guarded_drawing;
using oct::api::guarded_transfer;

namespace {

OfflineVolumeRendering& offline(OfflineRenderingHandle handle) {
  return oct::api::checked<OfflineVolumeRendering>(handle,
                                                   "The specified OfflineRenderingHandle is invalid. ");
}

}  // namespace

OfflineRenderingHandle createOfflineRendering(void) {
  return guarded(__func__, [] {
    return oct::api::handle_of<OctOfflineRendering>(std::make_unique<OfflineVolumeRendering>());
  });
}

void clearOfflineRendering(OfflineRenderingHandle Handle) {
  guarded(__func__, [&] {
    if (Handle) oct::api::delete_object<OfflineVolumeRendering>(Handle);
  });
}

void setOfflineRenderingRenderer(OfflineRenderingHandle Handle, VolumeRendererHandle Renderer) {
  guarded(__func__, [&] { offline(Handle).set_renderer(oct::api::find<oct::VolumeRenderer>(Renderer)); });
}

void setOfflineAspectRatio(OfflineRenderingHandle Handle, float Axial, float Lateral1, float Lateral2) {
  guarded(__func__, [&] { offline(Handle).set_aspect_ratio(Axial, Lateral1, Lateral2); });
}

void allocateOfflineVolume(OfflineRenderingHandle Handle, int Width, int Height, int Depth) {
  guarded_transfer(__func__, [&] { offline(Handle).allocate({Width, Height, Depth}); });
}

void uploadOfflineVolume(OfflineRenderingHandle Handle, const float* Volume) {
  guarded_transfer(__func__, [&] { offline(Handle).upload(Volume); });
}

void uploadOfflineVolumeOverlay(OfflineRenderingHandle Handle, const float* Volume) {
  guarded_transfer(__func__, [&] { offline(Handle).upload(Volume); });
}

void uploadOfflineSubVolume(OfflineRenderingHandle Handle, int First, int End, const float* Block) {
  guarded_transfer(__func__, [&] { offline(Handle).upload_sub_volume(First, End, Block); });
}

void uploadOfflineVolumeSlice(OfflineRenderingHandle Handle, int Index, const float* Slice) {
  guarded_transfer(__func__, [&] { offline(Handle).upload_slice(Index, Slice); });
}

void uploadOverlayOfflineVolume(OfflineRenderingHandle Handle, const float* Volume) {
  guarded_transfer(__func__, [&] { offline(Handle).upload_overlay(Volume); });
}

void uploadOfflineSecondaryData(OfflineRenderingHandle Handle, int Height, int Depth, unsigned int Width,
                                unsigned int First, unsigned int Count, const float* Data) {
  guarded_transfer(__func__, [&] {
    auto& object =
        oct::api::checked<OfflineVolumeRendering>(Handle, "The specified VolumeRendererHandle is invalid. ");
    object.upload_secondary_data({{Width, Height, Depth}, First, Count, Data});
  });
}

void renderOfflineVolume(OfflineRenderingHandle Handle, int ContentType) {
  guarded_drawing(__func__,
                  [&] { offline(Handle).render(static_cast<OfflineVolumeRendering::Content>(ContentType)); });
}
