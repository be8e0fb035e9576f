#include "volume/frame/volume_frame.h"

#include <glm/gtc/type_ptr.hpp>

#include "volume/layout/box_view.h"

namespace oct {

void bind_volume_texture(GLint unit, GLenum target, GLuint texture) {
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
  glBindTexture(target, texture);
}

bool VolumeFrame::surface_shown() const {
  return settings.render_surface && settings.surface && !settings.surface->triangles.empty();
}

GLenum VolumeFrame::front_winding() const {
  return glm::determinant(glm::mat3(camera.modelview)) < 0.0F ? GL_CCW : GL_CW;
}

bool VolumeFrame::cut_faces_viewer() const {
  return glm::dot(clip_plane.plane(), eye_in_model(camera)) < 0.0F;
}

void use_volume_program(const VolumeRenderingProgram& program, const VolumeFrame& frame) {
  program.use();
  const auto& at = program.at();
  const VolumeColormap& main = frame.main_colormap();
  const VolumeColormap& overlay = frame.colormaps.at(ColormapRole::overlay);
  glUniformMatrix4fv(at.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(at.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));

  bind_volume_texture(volume_unit::overlay, GL_TEXTURE_3D,
                      frame.source.overlay_present ? frame.source.overlay : 0);
  bind_volume_texture(volume_unit::overlay_color, GL_TEXTURE_1D, overlay.texture());
  bind_volume_texture(volume_unit::color, GL_TEXTURE_1D, main.texture());
  bind_volume_texture(volume_unit::volume, GL_TEXTURE_3D, frame.source.volume);
  glUniform1f(at.lowerValue, main.lower());
  glUniform1f(at.upperValue, main.upper());
  glUniform2f(at.overlayValues, overlay.lower(), overlay.upper());
}

void use_simple_program(const VolumeFrame& frame, const glm::vec4& color) {
  const SimpleProgram& program = frame.programs.simple();
  program.use();
  glUniformMatrix4fv(program.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.element_modelview));
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  glUniform4fv(program.color, 1, glm::value_ptr(color));
}

}  // namespace oct
