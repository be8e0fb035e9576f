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

void EmptyProgram::load() {
  load_to_program("empty_program", shaders::section_vert, shaders::empty_frag);
  modelview = uniform("modelview");
  projection = uniform("projection");
}

void SurfaceProgram::load() {
  load_to_program("surface_program", shaders::surface_vert, shaders::surface_frag);
  modelview = uniform("modelview");
  projection = uniform("projection");
  normal = uniform("normal");
  lowerDepth = uniform("lowerDepth");
  upperDepth = uniform("upperDepth");
  colorTex = uniform("colorTex");
}

void VolumePrograms::loadScene() {
  const TimingMark mark("shader_compile_volume");
  background.load_to_program("background_program", shaders::background_vert, shaders::background_frag);
  simple.load();
  section.load("program", shaders::section_vert, shaders::section_frag);
  sectionOverlay.load("overlay_rendering_program", shaders::section_vert, shaders::section_overlay_frag);
  surface.load();
  empty.load();
}

void VolumePrograms::loadRaycasting() {
  const char* const front = shaders::raycasting_vert;
  raycastingBack.load("raycasting_back_program", shaders::raycasting_back_vert,
                      shaders::raycasting_back_frag);
  raycasting.load("raycasting_program", front, shaders::raycasting_frag);
  raycastingMaximum.load("raycasting_program_mip", front, shaders::raycasting_mip_frag);
  raycastingMean.load("raycasting_program_mean", front, shaders::raycasting_mean_frag);
  raycastingDualColoring.load("raycasting_program_dual_coloring", front,
                              shaders::raycasting_dual_coloring_frag);
  raycastingOverlay.load("raycasting_overlay_program", front, shaders::raycasting_overlay_frag);
  raycastingOverlayMaximum.load("raycasting_overlay_program_mip", front,
                                shaders::raycasting_overlay_mip_frag);
  raycastingOverlayMean.load("raycasting_overlay_program_mean", front, shaders::raycasting_overlay_mean_frag);
}

void VolumePrograms::unload() {
  background.release();
  simple.release();
  empty.release();
  surface.release();
  for (VolumeRenderingProgram* const program : std::initializer_list<VolumeRenderingProgram*>{
           &section, &sectionOverlay, &raycastingBack, &raycasting, &raycastingMaximum, &raycastingMean,
           &raycastingDualColoring, &raycastingOverlay, &raycastingOverlayMaximum, &raycastingOverlayMean}) {
    program->release();
  }
}

const RaycastingProgram& VolumePrograms::raycastingOf(VolumeMode mode, bool overlay) const {
  switch (mode) {
    case VolumeMode::maximum:
      return overlay ? raycastingOverlayMaximum : raycastingMaximum;
    case VolumeMode::mean:
      return overlay ? raycastingOverlayMean : raycastingMean;
    case VolumeMode::dualColoring:
      return raycastingDualColoring;
    case VolumeMode::normal:
      break;
  }
  return overlay ? raycastingOverlay : raycasting;
}

}  // namespace oct
