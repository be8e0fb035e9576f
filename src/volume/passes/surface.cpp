#include "volume/passes/surface.h"

#include <glm/gtc/type_ptr.hpp>

#include "core/timing_mark.h"
#include "gl/opengl_error.h"

namespace oct {

void Surface::upload(const std::shared_ptr<const SurfaceMesh>& mesh) {
  uploaded_.reset();
  geometry_.set_vertices(std::span<const glm::vec3>(mesh->vertices));
  geometry_.set_attribute(std::span<const glm::vec3>(mesh->normals));
  geometry_.set_indices(mesh->triangles);
  gl::throwOnGLError("VolumeRenderer::surface changed");
  uploaded_ = mesh;
}

void Surface::draw(const VolumeFrame& frame) {
  const TimingMark mark("VolumeRenderer::render_surface");
  const std::shared_ptr<const SurfaceMesh>& mesh = frame.settings.surface;
  if (!mesh || mesh->triangles.empty()) return;
  if (uploaded_ != mesh) upload(mesh);
  const SurfaceProgram& program = frame.programs.surface;
  const VolumeColormap& colormap = frame.colormaps.at(ColormapRole::surface);
  program.use();
  glUniformMatrix4fv(program.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  glUniformMatrix3fv(program.normal, 1, GL_FALSE, glm::value_ptr(frame.camera.normal));
  glUniform1f(program.lower_depth, colormap.lower());
  glUniform1f(program.upper_depth, colormap.upper());
  glUniform1i(program.colorTex, volume_unit::color);
  bind_volume_texture(volume_unit::color, GL_TEXTURE_1D, colormap.texture());
  glDisable(GL_BLEND);
  geometry_.draw_indexed(GL_TRIANGLES, 0, static_cast<GLsizei>(mesh->triangles.size()));
  gl::throwOnGLError("VolumeRenderer::render_surface");
}

void Surface::release() {
  geometry_.release();
  uploaded_.reset();
}

}  // namespace oct
