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

struct SurfaceProgram : gl::Shader {
  void load();
  GLint modelview = -1, projection = -1, clipPlane = -1, normal = -1, lower_depth = -1, upper_depth = -1,
        colorTex = -1;
};

// Where rays end on the surface.
struct SurfaceBackProgram : gl::Shader {
  void load();
  GLint modelview = -1, projection = -1, clipPlane = -1;
};

class VolumePrograms {
 public:
  gl::Shader background;                   // "background_program": vec2 vertex (0), vec4 colour (1)
  SimpleProgram simple;                    // "simple_program": vec3 vertex (0); modelview, projection, color
  VolumeRenderingProgram section;          // "program": vec3 vertex (0); modelview, projection, flip
  VolumeRenderingProgram section_overlay;  // "overlay_rendering_program": the same with the overlay
  SurfaceProgram surface;                  // "surface_program": vec3 position (0), vec3 normal (1)
  SurfaceBackProgram surface_back;         // "surface_back_program": vec3 position (0)

  RaycastingProgram raycasting;
  RaycastingProgram raycasting_maximum;
  RaycastingProgram raycasting_mean;
  RaycastingProgram raycasting_dual_coloring;
  RaycastingProgram raycasting_overlay;
  RaycastingProgram raycasting_overlay_maximum;
  RaycastingProgram raycasting_overlay_mean;

  void load_scene();
  void load_raycasting();
  void unload();

  // The ray casting program of a mode; dual colouring knows no overlay.
  const RaycastingProgram& raycasting_of(VolumeMode mode, bool overlay) const;
};

}  // namespace oct
