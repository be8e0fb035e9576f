// Exports of the volume renderer.
#include "api/guard_opengl.h"
#include "api/handles.h"
#include "api/sized.h"
#include "api/texts.h"
#include "core/object_lock.h"
#include "core/timing_mark.h"
#include "gl/context/opengl_loader.h"
#include "gl/opengl_error.h"
#include "oct_rendering/oct_rendering.h"
#include "volume/volume_renderer.h"

using oct::ColormapRole;
using oct::VolumeRenderer;
using oct::api::guarded;
using oct::api::guarded_drawing;

namespace {

VolumeRenderer& renderer(VolumeRendererHandle handle) {
  return oct::api::checked<VolumeRenderer>(handle, "The specified VolumeRendererHandle is invalid. ");
}

}  // namespace

VolumeRendererHandle createVolumeRenderer(void) {
  return guarded(__func__,
                 [] { return oct::api::handle_of<OctVolumeRenderer>(std::make_unique<VolumeRenderer>()); });
}

void deleteVolumeRenderer(VolumeRendererHandle Handle) {
  guarded(__func__, [&] {
    const oct::ObjectLock lock(&renderer(Handle));
    oct::api::delete_object<VolumeRenderer>(Handle);
  });
}

void initializeVolumeRenderer(VolumeRendererHandle Handle) {
  guarded_drawing(__func__, [&] { renderer(Handle).init(); });
}

void uninitializeVolumeRenderer(VolumeRendererHandle Handle) {
  guarded_drawing(__func__, [&] { renderer(Handle).uninit(); });
}

void clearVolumeRenderer(VolumeRendererHandle Handle) {
  guarded(__func__, [&] { renderer(Handle).clear(); });
}

void setAngles(VolumeRendererHandle Handle, double X, double Y) {
  guarded(__func__, [&] { renderer(Handle).set_angles(X, Y); });
}

void setTranslation(VolumeRendererHandle Handle, double X, double Y, double Z) {
  guarded(__func__, [&] { renderer(Handle).set_translation(X, Y, Z); });
}

void setRange(VolumeRendererHandle Handle, double Axial, double Lateral1, double Lateral2) {
  guarded(__func__, [&] { renderer(Handle).set_range(Axial, Lateral1, Lateral2); });
}

void setZoom(VolumeRendererHandle Handle, double Zoom) {
  guarded(__func__, [&] { renderer(Handle).set_zoom(Zoom); });
}

void setViewportSize(unsigned int Width, unsigned int Height) {
  guarded(__func__, [&] {
    const oct::TimingMark mark("setViewportSize");
    oct::gl::require_opengl();
    glViewport(0, 0, static_cast<GLsizei>(Width), static_cast<GLsizei>(Height));
    oct::gl::throwOnGLError("setViewportSize");
  });
}

void setRenderingSlices(VolumeRendererHandle Handle, int Slices) {
  guarded(__func__, [&] { renderer(Handle).set_rendering_slices(Slices); });
}

void setUsePerspective(VolumeRendererHandle Handle, bool Perspective) {
  guarded(__func__, [&] { renderer(Handle).set_use_perspective(Perspective); });
}

void setLateralVoxelsPerPixel(VolumeRendererHandle Handle, double) {
  guarded(__func__, [&] { renderer(Handle); });
}

void setRenderingMode(VolumeRendererHandle Handle, int Mode) {
  guarded(__func__, [&] { renderer(Handle).set_rendering_mode(Mode); });
}

void setVolumeMode(VolumeRendererHandle Handle, int Mode) {
  guarded(__func__, [&] { renderer(Handle).set_volume_mode(Mode); });
}

void setVolumeLighting(VolumeRendererHandle Handle, double Ambient, double Diffuse, double Specular) {
  guarded(__func__, [&] { renderer(Handle).set_lighting(Ambient, Diffuse, Specular); });
}

void setRayJitter(VolumeRendererHandle Handle, int Enable) {
  guarded(__func__, [&] { renderer(Handle).set_ray_jitter(Enable != 0); });
}

void setOpacityLength(VolumeRendererHandle Handle, double Millimetres) {
  guarded(__func__, [&] { renderer(Handle).set_opacity_length(Millimetres); });
}

void setSectionalView(VolumeRendererHandle Handle, int Show1, float Position1, int Show2, float Position2,
                      int Show3, float Position3) {
  guarded(__func__, [&] {
    renderer(Handle).set_sectional_view({oct::Section{Show1 != 0, Position1},
                                         oct::Section{Show2 != 0, Position2},
                                         oct::Section{Show3 != 0, Position3}});
  });
}

void setClipPlane(VolumeRendererHandle Handle, int Enable, int OpenCut, float Value) {
  guarded(__func__, [&] { renderer(Handle).set_clip_plane(Enable != 0, OpenCut != 0, Value); });
}

void fixClipPlane(VolumeRendererHandle Handle, int Fix) {
  guarded(__func__, [&] { renderer(Handle).fix_clip_plane(Fix != 0); });
}

void setBorder(VolumeRendererHandle Handle, int ScaleMarks, int Edges, int Box) {
  guarded(__func__, [&] { renderer(Handle).set_frame({Edges != 0, ScaleMarks != 0, Box != 0}); });
}

void setRemoveSegment(VolumeRendererHandle Handle, int Remove) {
  guarded(__func__, [&] { renderer(Handle).set_remove_segment(Remove != 0); });
}

void setRenderElements(VolumeRendererHandle Handle, int Volume, int Surface) {
  guarded(__func__, [&] { renderer(Handle).set_render_elements(Volume != 0, Surface != 0); });
}

void setRenderBackground(VolumeRendererHandle Handle, unsigned int Bottom, unsigned int Top) {
  guarded(__func__, [&] { renderer(Handle).set_background(Bottom, Top); });
}

void setRenderForeground(VolumeRendererHandle Handle, unsigned int Color) {
  guarded(__func__, [&] { renderer(Handle).set_foreground(Color); });
}

void setRendererPart(VolumeRendererHandle Handle, unsigned int Width, unsigned int Height, int X, int Y) {
  guarded(__func__, [&] { renderer(Handle).set_part(oct::PicturePart::of(Width, Height, X, Y)); });
}

void setRendererColormap(VolumeRendererHandle Handle, const void* Colormap, int Count) {
  guarded(__func__, [&] { renderer(Handle).set_colormap(ColormapRole::main, Colormap, Count); });
}

void setRendererSecondaryColormap(VolumeRendererHandle Handle, const void* Colormap, int Count) {
  guarded(__func__, [&] { renderer(Handle).set_colormap(ColormapRole::secondary, Colormap, Count); });
}

void setOverlayRendererColormap(VolumeRendererHandle Handle, const void* Colormap, int Count) {
  guarded(__func__, [&] { renderer(Handle).set_colormap(ColormapRole::overlay, Colormap, Count); });
}

void setSurfaceColormap(VolumeRendererHandle Handle, const void* Colormap, int Count) {
  guarded(__func__, [&] { renderer(Handle).set_colormap(ColormapRole::surface, Colormap, Count); });
}

void setRendererColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper) {
  guarded(__func__, [&] { renderer(Handle).set_coloring_boundaries(ColormapRole::main, Lower, Upper); });
}

void setRendererSecondaryColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper) {
  guarded(__func__, [&] { renderer(Handle).set_coloring_boundaries(ColormapRole::secondary, Lower, Upper); });
}

void setOverlayRendererColoringBoundaries(VolumeRendererHandle Handle, double Lower, double Upper) {
  guarded(__func__, [&] { renderer(Handle).set_coloring_boundaries(ColormapRole::overlay, Lower, Upper); });
}

void setRendererSecondarySliceIndex(VolumeRendererHandle Handle, int Index) {
  guarded(__func__, [&] { renderer(Handle).set_secondary_slice_index(Index); });
}

int explainFrame(VolumeRendererHandle Handle, char* Text, int Size) {
  return guarded_drawing(__func__, [&] {
    return oct::api::give_explanation([&] { return renderer(Handle).explain_frame(); }, Text, Size);
  });
}

static_assert(static_cast<int>(oct::PickedKind::nothing) == OCT_PICK_NOTHING &&
              static_cast<int>(oct::PickedKind::volume) == OCT_PICK_VOLUME &&
              static_cast<int>(oct::PickedKind::slice) == OCT_PICK_SLICE &&
              static_cast<int>(oct::PickedKind::surface) == OCT_PICK_SURFACE);

int pickVolume(VolumeRendererHandle Handle, int X, int Y, OctPick* Pick) {
  return guarded_drawing(__func__, [&] {
    VolumeRenderer& object = renderer(Handle);
    const unsigned int size = oct::api::size_of(Pick, "The size of the pick must be set. ");
    const VolumeRenderer::Pick found = object.pick(X, Y);
    const OctPick all{size,
                      static_cast<int>(found.kind),
                      {found.voxel.x, found.voxel.y, found.voxel.z},
                      {found.millimetres.x, found.millimetres.y, found.millimetres.z},
                      found.value};
    oct::api::give(all, *Pick);
    return all.kind;
  });
}

void setSurface(VolumeRendererHandle Handle, int Width, int Height, double Scale, const float* Values) {
  guarded(__func__, [&] { renderer(Handle).set_surface(Width, Height, Scale, Values); });
}

void setSurfaceDepths(VolumeRendererHandle Handle, double Lower, double Upper) {
  guarded(__func__, [&] { renderer(Handle).set_surface_depths(Lower, Upper); });
}
