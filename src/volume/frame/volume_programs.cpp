#include "volume/frame/volume_programs.h"

#include <string>

#include "core/exception.h"
#include "core/timing_mark.h"
#include "shaders.h"

namespace oct {
namespace {

struct RaycastingSource {
  const char* name;
  const char* fragment;
};

RaycastingSource raycasting_source(VolumeMode mode, bool overlay) {
  switch (mode) {
    case VolumeMode::maximum:
      return overlay
                 ? RaycastingSource{"raycasting_overlay_program_mip", shaders::raycasting_overlay_mip_frag}
                 : RaycastingSource{"raycasting_program_mip", shaders::raycasting_mip_frag};
    case VolumeMode::mean:
      return overlay
                 ? RaycastingSource{"raycasting_overlay_program_mean", shaders::raycasting_overlay_mean_frag}
                 : RaycastingSource{"raycasting_program_mean", shaders::raycasting_mean_frag};
    case VolumeMode::dual_coloring:
      return {"raycasting_program_dual_coloring", shaders::raycasting_dual_coloring_frag};
    case VolumeMode::normal:
      break;
  }
  return overlay ? RaycastingSource{"raycasting_overlay_program", shaders::raycasting_overlay_frag}
                 : RaycastingSource{"raycasting_program", shaders::raycasting_frag};
}

// Behind the first line, which tells the version.
std::string with_definitions(std::string source, const std::string& definitions) {
  return source.insert(source.find('\n') + 1, definitions);
}

// The source with what makes it a variant defined.
void load_variant(RaycastingProgram& program, const RaycastingVariant& variant) {
  const RaycastingSource source = raycasting_source(variant.mode, variant.overlay);
  std::string name = source.name;
  std::string defines;
  const auto add = [&](const char* definition, bool is_so) {
    if (!is_so) return;
    name += std::string("_") + definition;
    defines += std::string("#define ") + definition + "\n";
  };
  add("LIT", variant.lit);
  add("OPACITY_LENGTH", variant.opacity_length);
  add("JITTERED", variant.jittered);
  add("PICKING", variant.picking);
  program.load(name, shaders::raycasting_vert, with_definitions(source.fragment, defines));
}

}  // namespace

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

template <class Program, class Build>
const Program& VolumePrograms::built(Program& program, Build build) {
  if (!loaded_) throw StateError("Program has not been compiled yet.");
  if (program.program() != 0) return program;
  const TimingMark mark("shader_compile_volume");
  try {
    build();
  } catch (...) {
    program.release();
    throw;
  }
  return program;
}

void VolumePrograms::load(const VolumeSettings& settings) {
  loaded_ = true;
  background();
  simple();
  if (settings.rendering_mode == RenderingMode::sectional_view) {
    section(false);
  } else {
    raycasting_of(RaycastingVariant::of(settings, false));
  }
}

void VolumePrograms::unload() {
  loaded_ = false;
  background_.release();
  simple_.release();
  for (VolumeRenderingProgram& program : sections_) program.release();
  surface_.release();
  surface_back_.release();
  raycasting_.clear();
}

const gl::Shader& VolumePrograms::background() {
  return built(background_, [&] {
    background_.load_to_program("background_program", shaders::background_vert, shaders::background_frag);
  });
}

const SimpleProgram& VolumePrograms::simple() {
  return built(simple_, [&] { simple_.load(); });
}

const VolumeRenderingProgram& VolumePrograms::section(bool overlay, bool picking) {
  VolumeRenderingProgram& program = sections_[(overlay ? 1U : 0U) + (picking ? 2U : 0U)];
  return built(program, [&] {
    const std::string name = overlay ? "overlay_rendering_program" : "program";
    program.load(picking ? name + "_PICKING" : name, shaders::section_vert,
                 with_definitions(overlay ? shaders::section_overlay_frag : shaders::section_frag,
                                  picking ? "#define PICKING\n" : ""));
  });
}

const SurfaceProgram& VolumePrograms::surface() {
  return built(surface_, [&] { surface_.load(); });
}

const SurfaceBackProgram& VolumePrograms::surface_back() {
  return built(surface_back_, [&] { surface_back_.load(); });
}

const RaycastingProgram& VolumePrograms::raycasting_of(const RaycastingVariant& variant) {
  RaycastingProgram& program = raycasting_[variant];
  return built(program, [&] { load_variant(program, variant); });
}

RaycastingVariant RaycastingVariant::of(const VolumeSettings& settings, bool overlay) {
  const VolumeMode mode = settings.volume_mode;
  const bool composite = mode == VolumeMode::normal || mode == VolumeMode::dual_coloring;
  return {mode, overlay && mode != VolumeMode::dual_coloring, composite && settings.lighting.changes_colors(),
          composite && settings.opacity_length > 0.0, settings.ray_jitter};
}

RaycastingVariant RaycastingVariant::for_picking() const {
  RaycastingVariant variant = *this;
  variant.lit = false;  // light moves nothing
  variant.picking = true;
  return variant;
}

}  // namespace oct
