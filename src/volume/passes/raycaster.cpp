#include "volume/passes/raycaster.h"

#include <algorithm>

#include <glm/gtc/type_ptr.hpp>

#include "core/timing_mark.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"
#include "volume/layout/box_view.h"
#include "volume/passes/ray_skipping.h"

namespace oct {
namespace {

// More steps show nothing that these do not, along the diagonal of the largest volume; a driver would hang in
// billions.
constexpr int most_slices = 8192;

// Where the volume's own proportions count.
void set_looks(const RaycastingProgram::RayLocations& at, const VolumeFrame& frame) {
  const glm::vec3& range = frame.range.extent;
  const glm::vec3 extent(range.y, range.x, range.z);  // along the axes of the box
  const Lighting& lighting = frame.settings.lighting;
  const glm::vec3 lengths(glm::min(glm::abs(glm::dvec3(extent)) / frame.settings.opacity_length, 1e30));
  glUniform3fv(at.extent, 1, glm::value_ptr(extent));
  glUniform3f(at.lighting, lighting.ambient, lighting.diffuse, lighting.specular);
  glUniform3fv(at.lengthScale, 1, glm::value_ptr(lengths));
}

bool secondary_slice_exists(const VolumeFrame& frame) {
  const int index = frame.settings.secondary_slice_index;
  return frame.source.secondary != 0 && index >= 0 && index < frame.source.secondary_slice_count;
}

}  // namespace

void Raycaster::release() {
  surface_positions_.release();
  cut_face_.release();
  face_before_eye_.release();
}

bool Raycaster::has_rays(const VolumeFrame& frame) {
  if (frame.box.empty()) return false;
  return frame.settings.volume_mode != VolumeMode::dual_coloring || secondary_slice_exists(frame);
}

void Raycaster::draw(const VolumeFrame& frame, Box& box, Surface& surface) {
  const gl::PassMark mark("render_raycasting::drawing");
  if (!has_rays(frame)) return;
  const RaycastingProgram& program =
      frame.programs.raycasting_of(RaycastingVariant::of(frame.settings, frame.source.overlay_present));
  if (frame.surface_shown()) surface_positions_.draw(frame, surface);
  prepare(program, frame);
  {
    const gl::Blending blending;
    draw_front_faces(program, frame, box);
  }
  gl::throwOnGLError("render_raycasting::drawing");
}

void Raycaster::pick(const VolumeFrame& frame, Box& box, const glm::uvec2& pixel) {
  if (!has_rays(frame)) return;
  const auto drawn = RaycastingVariant::of(frame.settings, frame.source.overlay_present);
  const RaycastingProgram& program = frame.programs.raycasting_of(drawn.for_picking());
  prepare(program, frame);
  glUniform2i(program.ray().firstPixel, static_cast<GLint>(pixel.x), static_cast<GLint>(pixel.y));
  draw_front_faces(program, frame, box);
}

void Raycaster::prepare(const RaycastingProgram& program, const VolumeFrame& frame) {
  if (!frame.clip_plane.cut_face().empty()) cut_face_.set_vertices(frame.clip_plane.cut_face());
  const Visibility visibility = prepare_empty_space(frame);
  set_uniforms(program, frame);
  set_empty_space(program.ray(), frame, visibility);
}

void Raycaster::set_uniforms(const RaycastingProgram& program, const VolumeFrame& frame) const {
  use_volume_program(program, frame);
  const bool surface = frame.surface_shown();
  bind_volume_texture(volume_unit::surface, GL_TEXTURE_2D, surface ? surface_positions_.texture() : 0);
  glUniform1i(program.ray().endsOnSurface, surface ? 1 : 0);
  glUniform1f(program.ray().boxEnd, 0.5F * frame.box.end() + 0.5F);
  const int slices = std::min(frame.settings.slices, most_slices);
  glUniform1i(program.ray().slices, slices);
  glUniform1f(program.ray().stepSize, 1.7320508F / static_cast<float>(slices));
  glUniform2i(program.ray().firstPixel, frame.camera.first_pixel.x, frame.camera.first_pixel.y);
  glUniform4fv(program.ray().clipPlane, 1, glm::value_ptr(frame.clip_plane.plane()));
  const glm::vec4 eye = eye_in_model(frame.camera);
  glUniform4fv(program.ray().eye, 1, glm::value_ptr(glm::vec4(0.5F * (glm::vec3(eye) + eye.w), eye.w)));
  bind_volume_texture(volume_unit::sample_color, GL_TEXTURE_2D, frame.main_colormap().sample_texture());
  set_looks(program.ray(), frame);
  if (frame.settings.volume_mode == VolumeMode::dual_coloring) set_secondary(program, frame);
}

void Raycaster::set_secondary(const RaycastingProgram& program, const VolumeFrame& frame) const {
  const TimingMark mark("render_raycasting::drawing secondary texture");
  const VolumeColormap& colormap = frame.colormaps.at(ColormapRole::secondary);
  bind_volume_texture(volume_unit::color2, GL_TEXTURE_1D, colormap.texture());
  bind_volume_texture(volume_unit::secondary, GL_TEXTURE_3D, frame.source.secondary);
  const auto& at = program.at();
  glUniform1f(at.lowerValue2, colormap.lower());
  glUniform1f(at.upperValue2, colormap.upper());
  glUniform1f(at.secondarySlice, (static_cast<float>(frame.settings.secondary_slice_index) + 0.5F) /
                                     static_cast<float>(frame.source.secondary_slice_count));
  gl::throwOnGLError("render_raycasting::drawing secondary texture");
}

void Raycaster::draw_front_faces(const RaycastingProgram& program, const VolumeFrame& frame, Box& box) {
  // Where something opaque lies before the volume, the program knows: a test of depths would lose the rim of
  // the box to the polygon offset. The offset is for the lines on the box, which are tested against it.
  const gl::DepthTest depth(GL_ALWAYS, true);
  const gl::PolygonOffset offset(1.0F, 4.0F);
  const gl::FaceCulling culling(GL_BACK, frame.front_winding());
  box.draw(frame.box);
  // To a viewer in the box all its faces are back faces.
  const std::vector<glm::vec3> before_eye = face_before_eye(frame.box, frame.camera);
  if (!before_eye.empty()) {
    face_before_eye_.set_vertices(std::span(before_eye));
    face_before_eye_.draw(GL_TRIANGLES, 0, static_cast<GLsizei>(before_eye.size()));
  }
  const auto corners = static_cast<GLsizei>(frame.clip_plane.cut_face().size());
  if (corners > 0 && !frame.clip_plane.open_cut() && frame.cut_faces_viewer()) {
    // Points of the plane itself; rounding must not clip them. Each triangle comes in both
    // windings, of which one is culled.
    glUniform4f(program.ray().clipPlane, 0.0F, 0.0F, 0.0F, 0.0F);
    cut_face_.draw(GL_TRIANGLES, 0, corners);
  }
}

}  // namespace oct
