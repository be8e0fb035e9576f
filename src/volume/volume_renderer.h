// Draws one volume, held by its owner in a 3-D texture, and the scene around it into the current target.
#pragma once

#include <cstdint>

#include "volume/frame/volume_colormap.h"
#include "volume/frame/volume_programs.h"
#include "volume/frame/volume_settings.h"
#include "volume/layout/clip_plane.h"
#include "volume/passes/background.h"
#include "volume/passes/box.h"
#include "volume/passes/raycaster.h"
#include "volume/passes/scene_elements.h"
#include "volume/passes/surface.h"

namespace oct {

// Every operation takes the renderer's ObjectLock, so that a frame sees each setting whole. init, uninit,
// render and the destructor run on the thread that owns the context.
class VolumeRenderer {
 public:
  VolumeRenderer();
  ~VolumeRenderer();
  VolumeRenderer(const VolumeRenderer&) = delete;
  VolumeRenderer& operator=(const VolumeRenderer&) = delete;

  void init();
  void uninit();
  void render();

  // Camera
  void setAngles(double x, double y);
  void setTranslation(double x, double y, double z);
  void setRange(double axial, double lateral1, double lateral2);
  void setZoom(double zoom);
  void setUsePerspective(bool perspective);

  // Modes
  void setRenderingSlices(int slices);
  void setRenderingMode(int mode);
  void setVolumeMode(int mode);
  void setRenderElements(bool volume, bool surface);

  // Scene
  void setSectionalView(const std::array<Section, 3>& sections);
  void setClipPlane(bool enable, bool open_cut, float value);
  void fixClipPlane(bool fix);
  void setFrame(const FrameFlags& flags);
  void setRemoveSegment(bool remove);
  void setBackground(std::uint32_t bottom, std::uint32_t top);
  void setForeground(std::uint32_t color);

  // Colours. Before init there is nothing to set, and nothing happens.
  void setColormap(ColormapRole role, const void* colors, int count);
  void setColoringBoundaries(ColormapRole role, double lower, double upper);
  void setSecondarySliceIndex(int index);

  void setSurface(int width, int height, double scale, const float* values);
  void setSurfaceDepths(double lower, double upper);

  // For the owner of the volume
  VolumeSource source() const;
  void setSource(const VolumeSource& source);
  void clear();  // forgets the volume and shows neither volume nor surface

  VolumeSettings settings() const;

 private:
  // The steps of a frame, in their order.
  VolumeFrame beginFrame();
  void clearTarget();
  void drawBackground();
  void beginDepth();
  void drawBox(const VolumeFrame& frame);
  void drawFarSide(const VolumeFrame& frame);
  void drawBehindVolume(const VolumeFrame& frame);
  void drawVolume(const VolumeFrame& frame);
  void drawSections(const VolumeFrame& frame);
  void drawSurface(const VolumeFrame& frame);
  void drawInFront(const VolumeFrame& frame);
  void finishFrame();

  void release();

  VolumeSettings settings_;
  VolumeSource source_;
  VolumeColormaps colormaps_;
  VolumePrograms programs_;
  ClipPlane clipPlane_;
  Background background_;
  Box box_;
  Raycaster raycaster_;
  SceneElements elements_;
  Surface surface_;
};

}  // namespace oct
