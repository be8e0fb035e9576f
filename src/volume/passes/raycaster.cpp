#include "volume/passes/raycaster.h"

#include <algorithm>
#include <cmath>

#include <glm/gtc/type_ptr.hpp>

#include "core/timing_mark.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "volume/layout/box_view.h"
#include "volume/skipping/empty_space.h"

namespace oct {
namespace {

// More steps show nothing that these do not, along the diagonal of the largest volume; a driver would hang in
// billions.
constexpr int most_slices = 8192;

bool secondary_slice_exists(const VolumeFrame& frame) {
  const int index = frame.settings.secondary_slice_index;
  return frame.source.secondary != 0 && index >= 0 && index < frame.source.secondary_slice_count;
}

}  // namespace

// Sample positions and colours are what the literal loop has; only boundaries that ascend, and are numbers, tell
// what shows.
Visibility visibility_of(const VolumeFrame& frame) {
  Visibility visibility;
  const VolumeColormap& main = frame.main_colormap();
  const VolumeMode mode = frame.settings.volume_mode;
  const bool overlay = frame.source.overlay_present;
  const bool sound = std::isfinite(main.lower()) && std::isfinite(main.upper()) && main.lower() < main.upper();
  if (!sound || frame.settings.slices <= 0 || !frame.source.empty_space || !frame.source.volume_maxima ||
      mode == VolumeMode::mean)
    return visibility;
  visibility.octants = octants_of(eye_in_model(frame.camera));
  if (mode == VolumeMode::maximum) {
    visibility.count = Visibility::most_limits;
    for (int i = 0; i < visibility.count; ++i) {
      visibility.limits[static_cast<std::size_t>(i)] =
          main.lower() + static_cast<float>(i) / static_cast<float>(visibility.count) * (main.upper() - main.lower());
    }
  } else if (!overlay || mode == VolumeMode::dual_coloring) {
    visibility.count = 1;
    visibility.limits[0] = main.visible_from();
  }
  return visibility;
}

void Raycaster::release() {
  back_faces_.release();
  cut_face_.release();
  face_before_eye_.release();
}

void Raycaster::draw(const VolumeFrame& frame, Box& box, Surface& surface) {
  const TimingMark mark("render_raycasting::drawing");
  const VolumeMode mode = frame.settings.volume_mode;
  if (frame.box.empty()) return;
  if (mode == VolumeMode::dual_coloring && !secondary_slice_exists(frame)) return;
  const RaycastingProgram& program = frame.programs.raycasting_of(mode, frame.source.overlay_present);
  if (!frame.clip_plane.cut_face().empty()) cut_face_.set_vertices(frame.clip_plane.cut_face());

  back_faces_.draw(frame, box, cut_face_, surface);
  set_uniforms(program, frame);
  draw_front_faces(program, frame, box);
  gl::throwOnGLError("render_raycasting::drawing");
}

void Raycaster::set_uniforms(const RaycastingProgram& program, const VolumeFrame& frame) const {
  use_volume_program(program, frame);
  bind_volume_texture(volume_unit::back, GL_TEXTURE_2D, back_faces_.texture());
  glUniform1i(program.ray().backTex, volume_unit::back);
  const int slices = std::min(frame.settings.slices, most_slices);
  glUniform1i(program.ray().slices, slices);
  glUniform1f(program.ray().stepSize, 1.7320508F / static_cast<float>(slices));
  glUniform4fv(program.ray().clipPlane, 1, glm::value_ptr(frame.clip_plane.plane()));
  const glm::vec4 eye = eye_in_model(frame.camera);
  glUniform4fv(program.ray().eye, 1, glm::value_ptr(glm::vec4(0.5F * (glm::vec3(eye) + eye.w), eye.w)));
  set_empty_space(program, frame);
  if (frame.settings.volume_mode == VolumeMode::dual_coloring) set_secondary(program, frame);
}

void Raycaster::set_empty_space(const RaycastingProgram& program, const VolumeFrame& frame) const {
  const Visibility visibility = visibility_of(frame);
  const auto& at = program.ray();
  glUniform1i(at.limitCount, visibility.count);
  glUniform1i(at.emptyTex, volume_unit::empty);
  if (visibility.count == 0) return bind_volume_texture(volume_unit::empty, GL_TEXTURE_3D, 0);
  BrickMaxima& maxima = *frame.source.volume_maxima;
  frame.source.empty_space->update(maxima, nullptr, visibility);
  bind_volume_texture(volume_unit::empty, GL_TEXTURE_3D, frame.source.empty_space->texture());
  const BrickGrid& grid = maxima.grid();
  const VolumeExtent& extent = maxima.extent();
  const auto side = static_cast<float>(maxima.side());
  glUniform3i(at.grid, static_cast<GLint>(grid.depth), static_cast<GLint>(grid.a_scans),
              static_cast<GLint>(grid.b_scans));
  glUniform3f(at.brickScale, static_cast<float>(extent.depth) / side, static_cast<float>(extent.a_scans) / side,
              static_cast<float>(extent.b_scans) / side);
  glUniform3f(at.brickOffset, 0.5F / side, 0.5F / side, 0.5F / side);
  glUniform1fv(at.limits, Visibility::most_limits, visibility.limits.data());
}

void Raycaster::set_secondary(const RaycastingProgram& program, const VolumeFrame& frame) const {
  const TimingMark mark("render_raycasting::drawing secondary texture");
  const VolumeColormap& colormap = frame.colormaps.at(ColormapRole::secondary);
  bind_volume_texture(volume_unit::color2, GL_TEXTURE_1D, colormap.texture());
  bind_volume_texture(volume_unit::secondary, GL_TEXTURE_3D, frame.source.secondary);
  const auto& at = program.at();
  glUniform1i(at.colorTex2, volume_unit::color2);
  glUniform1i(at.secondaryTex, volume_unit::secondary);
  glUniform1f(at.lowerValue2, colormap.lower());
  glUniform1f(at.upperValue2, colormap.upper());
  glUniform1f(at.secondarySlice, (static_cast<float>(frame.settings.secondary_slice_index) + 0.5F) /
                                     static_cast<float>(frame.source.secondary_slice_count));
  gl::throwOnGLError("render_raycasting::drawing secondary texture");
}

void Raycaster::draw_front_faces(const RaycastingProgram& program, const VolumeFrame& frame, Box& box) {
  const gl::Blending blending;
  // Where something opaque lies before the volume, the program knows: a test of depths would lose the rim of
  // the box to the polygon offset. The offset is for the lines on the box, which are tested against it.
  const gl::DepthTest depth(GL_ALWAYS, true, {1.0F, 4.0F});
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
