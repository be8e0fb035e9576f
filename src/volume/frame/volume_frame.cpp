#include "volume/frame/volume_frame.h"

#include <glm/gtc/type_ptr.hpp>

#include "volume/layout/box_view.h"

namespace oct {

void bindVolumeTexture(GLint unit, GLenum target, GLuint texture) {
  glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(unit));
  glBindTexture(target, texture);
}

bool VolumeFrame::cutFacesViewer() const {
  return glm::dot(clipPlane.plane(), eyeInModel(camera)) < 0.0F;
}

void useVolumeProgram(const VolumeRenderingProgram& program, const VolumeFrame& frame) {
  program.use();
  const auto& at = program.at();
  const VolumeColormap& main = frame.mainColormap();
  const VolumeColormap& overlay = frame.colormaps.at(ColormapRole::overlay);
  glUniformMatrix4fv(at.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(at.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));

  bindVolumeTexture(volume_unit::overlay, GL_TEXTURE_3D,
                    frame.source.overlayPresent ? frame.source.overlay : 0);
  bindVolumeTexture(volume_unit::overlayColor, GL_TEXTURE_1D, overlay.texture());
  bindVolumeTexture(volume_unit::color, GL_TEXTURE_1D, main.texture());
  bindVolumeTexture(volume_unit::volume, GL_TEXTURE_3D, frame.source.volume);
  glUniform1i(at.volumeTex, volume_unit::volume);
  glUniform1i(at.colorTex, volume_unit::color);
  glUniform1i(at.volumeOverlayTex, volume_unit::overlay);
  glUniform1i(at.colorOverlayTex, volume_unit::overlayColor);
  glUniform1f(at.lowerValue, main.lower());
  glUniform1f(at.upperValue, main.upper());
  glUniform2f(at.overlayValues, overlay.lower(), overlay.upper());
}

void useSimpleProgram(const VolumeFrame& frame, const glm::vec4& color) {
  const SimpleProgram& program = frame.programs.simple;
  program.use();
  glUniformMatrix4fv(program.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.elementModelview));
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  glUniform4fv(program.color, 1, glm::value_ptr(color));
}

}  // namespace oct
