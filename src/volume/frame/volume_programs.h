// The fixed set of programs of a volume renderer.
#pragma once

#include <array>
#include <compare>
#include <map>

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

// A ray casting program: that of a mode, in the way that samples are taken and coloured.
struct RaycastingVariant {
  VolumeMode mode = VolumeMode::normal;
  bool overlay = false;
  bool lit = false;
  bool opacity_length = false;
  bool jittered = false;
  bool picking = false;  // tells what lies under a pixel, in place of its colour

  // Dual colouring knows no overlay, and what is no composite neither light nor opacity.
  static RaycastingVariant of(const VolumeSettings& settings, bool overlay);
  RaycastingVariant for_picking() const;
  auto operator<=>(const RaycastingVariant&) const = default;
};

// Each is built when it is first asked for, and stays. One that does not build is tried again the next time. Before
// load() and after unload() asking throws StateError "Program has not been compiled yet.".
class VolumePrograms {
 public:
  void load(const VolumeSettings& settings);  // those that a frame with these settings needs
  void unload();

  const gl::Shader& background();  // vec2 vertex (0), vec4 colour (1)
  const SimpleProgram& simple();   // vec3 vertex (0); modelview, projection, color
  // vec3 vertex (0); modelview, projection, flip
  const VolumeRenderingProgram& section(bool overlay, bool picking = false);
  const SurfaceProgram& surface();           // vec3 position (0), vec3 normal (1)
  const SurfaceBackProgram& surface_back();  // vec3 position (0)

  const RaycastingProgram& raycasting_of(const RaycastingVariant& variant);

 private:
  template <class Program, class Build>
  const Program& built(Program& program, Build build);

  bool loaded_ = false;
  gl::Shader background_;
  SimpleProgram simple_;
  std::array<VolumeRenderingProgram, 4> sections_;  // + 1 with an overlay, + 2 for picking
  SurfaceProgram surface_;
  SurfaceBackProgram surface_back_;
  std::map<RaycastingVariant, RaycastingProgram> raycasting_;
};

}  // namespace oct
