#include "volume/frame/volume_programs.h"

#include "core/timing_mark.h"
#include "shaders.h"

namespace oct {

void SimpleProgram::load() {
  load_to_program("simple_program", shaders::simple_vert, shaders::simple_frag);
  modelview = uniform("modelview");
  projection = uniform("projection");
  color = uniform("color");
}

void SurfaceProgram::load() {
  load_to_program("surface_program", shaders::surface_vert, shaders::surface_frag);
  modelview = uniform("modelview");
  projection = uniform("projection");
  clipPlane = uniform("clipPlane");
  normal = uniform("normal");
  lower_depth = uniform("lower_depth");
  upper_depth = uniform("upper_depth");
  colorTex = uniform("colorTex");
}

void SurfaceBackProgram::load() {
  load_to_program("surface_back_program", shaders::surface_back_vert, shaders::surface_back_frag);
  modelview = uniform("modelview");
  projection = uniform("projection");
  clipPlane = uniform("clipPlane");
}

void VolumePrograms::load_scene() {
  const TimingMark mark("shader_compile_volume");
  background.load_to_program("background_program", shaders::background_vert, shaders::background_frag);
  simple.load();
  section.load("program", shaders::section_vert, shaders::section_frag);
  section_overlay.load("overlay_rendering_program", shaders::section_vert, shaders::section_overlay_frag);
  surface.load();
}

void VolumePrograms::load_raycasting() {
  const char* const front = shaders::raycasting_vert;
  surface_back.load();
  raycasting.load("raycasting_program", front, shaders::raycasting_frag);
  raycasting_maximum.load("raycasting_program_mip", front, shaders::raycasting_mip_frag);
  raycasting_mean.load("raycasting_program_mean", front, shaders::raycasting_mean_frag);
  raycasting_dual_coloring.load("raycasting_program_dual_coloring", front,
                                shaders::raycasting_dual_coloring_frag);
  raycasting_overlay.load("raycasting_overlay_program", front, shaders::raycasting_overlay_frag);
  raycasting_overlay_maximum.load("raycasting_overlay_program_mip", front,
                                  shaders::raycasting_overlay_mip_frag);
  raycasting_overlay_mean.load("raycasting_overlay_program_mean", front,
                               shaders::raycasting_overlay_mean_frag);
}

void VolumePrograms::unload() {
  background.release();
  simple.release();
  surface.release();
  surface_back.release();
  for (VolumeRenderingProgram* const program : std::initializer_list<VolumeRenderingProgram*>{
           &section, &section_overlay, &raycasting, &raycasting_maximum, &raycasting_mean,
           &raycasting_dual_coloring, &raycasting_overlay, &raycasting_overlay_maximum,
           &raycasting_overlay_mean}) {
    program->release();
  }
}

const RaycastingProgram& VolumePrograms::raycasting_of(VolumeMode mode, bool overlay) const {
  switch (mode) {
    case VolumeMode::maximum:
      return overlay ? raycasting_overlay_maximum : raycasting_maximum;
    case VolumeMode::mean:
      return overlay ? raycasting_overlay_mean : raycasting_mean;
    case VolumeMode::dual_coloring:
      return raycasting_dual_coloring;
    case VolumeMode::normal:
      break;
  }
  return overlay ? raycasting_overlay : raycasting;
}

}  // namespace oct
