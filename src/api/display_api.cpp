// Exports of the display of B-scans.
#include "api/guard_opengl.h"
#include "api/handles.h"
#include "api/texts.h"
#include "display/display_renderer.h"
#include "oct_rendering/oct_rendering.h"

using oct::DisplayRenderer;
using oct::api::guarded;
using oct::api::guarded_drawing;

static_assert(OCT_DISPLAY_OVERLAYS == DisplayRenderer::overlay_count);

namespace {

DisplayRenderer& renderer(DisplayRenderingHandle handle) {
  return oct::api::checked<DisplayRenderer>(handle, "Invalid DisplayRenderingHandle specified. ");
}

}  // namespace

DisplayRenderingHandle createDisplayRendering(void) {
  return guarded(
      __func__, [] { return oct::api::handle_of<OctDisplayRendering>(std::make_unique<DisplayRenderer>()); });
}

void clearDisplayRendering(DisplayRenderingHandle Handle) {
  guarded(__func__, [&] {
    if (Handle) oct::api::delete_object<DisplayRenderer>(Handle);
  });
}

void initDisplayRendering(DisplayRenderingHandle Handle) {
  guarded_drawing(__func__, [&] { renderer(Handle).init(); });
}

void uninitDisplayRendering(DisplayRenderingHandle Handle) {
  guarded_drawing(__func__, [&] { renderer(Handle).uninit(); });
}

void renderDisplay(DisplayRenderingHandle Handle) {
  guarded_drawing(__func__, [&] { renderer(Handle).render(); });
}

void setDisplayData(DisplayRenderingHandle Handle, int Size1, int Size2, const float* Data) {
  guarded(__func__, [&] { renderer(Handle).set_data({Size1, Size2}, Data); });
}

void setDisplayBounds(DisplayRenderingHandle Handle, int, int) {
  guarded(__func__, [&] { renderer(Handle); });
}

void clearDisplayData(DisplayRenderingHandle Handle) {
  guarded(__func__, [&] { renderer(Handle); });
}

void setGammaCorrection(DisplayRenderingHandle Handle, float) {
  guarded(__func__, [&] { renderer(Handle); });
}

void setDisplayBlur(DisplayRenderingHandle Handle, int First, int Second) {
  guarded(__func__, [&] { renderer(Handle).set_blur(First != 0, Second != 0); });
}

void setDisplayFlip(DisplayRenderingHandle Handle, int Flip) {
  guarded(__func__, [&] { renderer(Handle).set_flip(Flip != 0); });
}

void setDisplayPart(DisplayRenderingHandle Handle, unsigned int Width, unsigned int Height, int X, int Y) {
  guarded(__func__, [&] { renderer(Handle).set_part(oct::PicturePart::of(Width, Height, X, Y)); });
}

void setDisplayDynamicReduction(DisplayRenderingHandle Handle, int) {
  guarded(__func__, [&] { renderer(Handle); });
}

void setDisplayPepperFilter(DisplayRenderingHandle Handle, int Enable) {
  guarded(__func__, [&] { renderer(Handle).set_pepper_filter(Enable != 0); });
}

void setDisplayMedianFilter(DisplayRenderingHandle Handle, int MedianFilter) {
  guarded(__func__, [&] { renderer(Handle).set_median_filter(MedianFilter); });
}

void setBackgroundColor(DisplayRenderingHandle Handle, int Color) {
  guarded(__func__, [&] { renderer(Handle).set_background_color(Color); });
}

void setDisplayColormap(DisplayRenderingHandle Handle, const void* Colormap, int Count) {
  guarded(__func__, [&] { renderer(Handle).set_colormap(Colormap, Count); });
}

void setDisplayColoringBoundaries(DisplayRenderingHandle Handle, double Lower, double Upper) {
  guarded(__func__, [&] { renderer(Handle).set_coloring_boundaries(Lower, Upper); });
}

void setDisplayNumberOverlays(DisplayRenderingHandle Handle, int, int Count) {
  guarded(__func__, [&] { renderer(Handle).set_number_overlays(Count); });
}

void setDisplayOverlayData(DisplayRenderingHandle Handle, int Size1, int Size2, const float* Data) {
  guarded(__func__, [&] { renderer(Handle).set_overlay_data({Size1, Size2}, Data); });
}

void setDisplayOverlayColormap(DisplayRenderingHandle Handle, int Overlay, const void* Colormap, int Count) {
  guarded(__func__, [&] { renderer(Handle).set_overlay_colormap(Overlay, Colormap, Count); });
}

void setDisplayOveralyColoringBoundaries(DisplayRenderingHandle Handle, int Overlay, double Lower,
                                         double Upper) {
  guarded(__func__, [&] { renderer(Handle).set_overlay_coloring_boundaries(Overlay, Lower, Upper); });
}

void setDisplayOveralyThreshold(DisplayRenderingHandle Handle, double Threshold) {
  guarded(__func__, [&] { renderer(Handle).set_overlay_threshold(Threshold); });
}

int explainDisplay(DisplayRenderingHandle Handle, char* Text, int Size) {
  return guarded(__func__, [&] {
    return oct::api::give_explanation([&] { return renderer(Handle).explain(); }, Text, Size);
  });
}
