// What the passes of one frame draw with. Valid for that frame only.
#pragma once

#include "volume/frame/volume_colormap.h"
#include "volume/frame/volume_programs.h"
#include "volume/frame/volume_settings.h"
#include "volume/layout/camera.h"
#include "volume/layout/filled_box.h"

namespace oct {

struct VolumeFrame {
  const VolumeSettings& settings;
  const VolumeSource& source;
  const VolumeColormaps& colormaps;
  VolumePrograms& programs;
  const ClipPlane& clip_plane;
  Range range;  // the volume's own, or the client's
  Camera camera;
  FilledBox box;

  bool volume_shown() const { return source.volume != 0 && settings.render_volume; }
  bool sectional() const { return settings.rendering_mode == RenderingMode::sectional_view; }
  bool surface_shown() const;

  // What is on its negative side is not drawn; all zero where nothing is cut. The slices of the sectional view
  // stay whole, and what is among them.
  glm::vec4 cutting_plane() const { return sectional() ? glm::vec4(0.0F) : clip_plane.plane(); }

  // The order in which corners of the box's and the surface's fronts appear, GL_CCW or GL_CW: a range mirrors
  // depth, and negative extents mirror more.
  GLenum front_winding() const;

  // Whether the viewer looks at the cut of the clip plane, and not at it through the volume.
  bool cut_faces_viewer() const;

  // The colour map that colours the volume.
  const VolumeColormap& main_colormap() const {
    return colormaps.at(source.main_colormap_is_overlay ? ColormapRole::overlay : ColormapRole::main);
  }
};

void bind_volume_texture(GLint unit, GLenum target, GLuint texture);

// Sets every texture and uniform of a program that samples the volume, and makes it the current one:
// matrices, volume, colour maps and boundaries, overlay. The program must have been loaded.
void use_volume_program(const VolumeRenderingProgram& program, const VolumeFrame& frame);

// Makes a program with modelview, projection and the uniform "color" the current one.
void use_simple_program(const VolumeFrame& frame, const glm::vec4& color);

}  // namespace oct
