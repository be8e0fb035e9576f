// The fixed set of programs of a volume renderer.
#pragma once

#include "gl/shader.h"
#include "volume/frame/volume_program.h"
#include "volume/frame/volume_settings.h"

namespace oct {

struct SimpleProgram : gl::Shader {
  void load();
  GLint modelview = -1, projection = -1, color = -1;
};

// Uniforms modelview and projection only.
struct EmptyProgram : gl::Shader {
  void load();
  GLint modelview = -1, projection = -1;
};

struct SurfaceProgram : gl::Shader {
  void load();
  GLint modelview = -1, projection = -1, normal = -1, lowerDepth = -1, upperDepth = -1, colorTex = -1;
};

class VolumePrograms {
 public:
  gl::Shader background;                  // "background_program": vec2 vertex (0), vec4 colour (1)
  SimpleProgram simple;                   // "simple_program": vec3 vertex (0); modelview, projection, color
  VolumeRenderingProgram section;         // "program": vec3 vertex (0); modelview, projection, flip
  VolumeRenderingProgram sectionOverlay;  // "overlay_rendering_program": the same with the overlay
  SurfaceProgram surface;                 // "surface_program": vec3 position (0), vec3 normal (1)
  EmptyProgram empty;                     // "empty_program": transparent black, for depth alone

  RaycastingProgram raycastingBack;
  RaycastingProgram raycasting;
  RaycastingProgram raycastingMaximum;
  RaycastingProgram raycastingMean;
  RaycastingProgram raycastingDualColoring;
  RaycastingProgram raycastingOverlay;
  RaycastingProgram raycastingOverlayMaximum;
  RaycastingProgram raycastingOverlayMean;

  void loadScene();
  void loadRaycasting();
  void unload();

  // The ray casting program of a mode; dual colouring knows no overlay.
  const RaycastingProgram& raycastingOf(VolumeMode mode, bool overlay) const;
};

}  // namespace oct
