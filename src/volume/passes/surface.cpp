#include "volume/passes/surface.h"

#include <glm/gtc/type_ptr.hpp>

#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"

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
  const gl::PassMark mark("VolumeRenderer::render_surface");
  const SurfaceProgram& program = frame.programs.surface();
  const VolumeColormap& colormap = frame.colormaps.at(ColormapRole::surface);
  program.use();
  glUniformMatrix4fv(program.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  glUniform4fv(program.clipPlane, 1, glm::value_ptr(frame.cutting_plane()));
  glUniformMatrix3fv(program.normal, 1, GL_FALSE, glm::value_ptr(frame.camera.normal));
  glUniform1f(program.lower_depth, colormap.lower());
  glUniform1f(program.upper_depth, colormap.upper());
  glUniform1i(program.colorTex, volume_unit::color);
  bind_volume_texture(volume_unit::color, GL_TEXTURE_1D, colormap.texture());
  {
    const gl::DepthTest depth(GL_LEQUAL, true);
    const gl::PolygonOffset offset(1.0F, 4.0F);
    draw_mesh(frame);
  }
  gl::throwOnGLError("VolumeRenderer::render_surface");
}

void Surface::draw_back(const VolumeFrame& frame) {
  const SurfaceBackProgram& program = frame.programs.surface_back();
  program.use();
  glUniformMatrix4fv(program.modelview, 1, GL_FALSE, glm::value_ptr(frame.camera.modelview));
  glUniformMatrix4fv(program.projection, 1, GL_FALSE, glm::value_ptr(frame.camera.projection));
  glUniform4fv(program.clipPlane, 1, glm::value_ptr(frame.cutting_plane()));
  draw_mesh(frame);
}

void Surface::draw_mesh(const VolumeFrame& frame) {
  const std::shared_ptr<const SurfaceMesh>& mesh = frame.settings.surface;
  if (uploaded_ != mesh) upload(mesh);
  glFrontFace(frame.front_winding());
  geometry_.draw_indexed(GL_TRIANGLES, 0, static_cast<GLsizei>(mesh->triangles.size()));
}

void Surface::release() {
  geometry_.release();
  uploaded_.reset();
}

}  // namespace oct
