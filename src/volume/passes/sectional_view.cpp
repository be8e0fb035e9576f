#include "volume/passes/sectional_view.h"

#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"
#include "volume/passes/line_drawing.h"

namespace oct {
namespace {

float coordinate(float position) {
  return 2.0F * position - 1.0F;
}

// The slices that there are in the filled part of the box.
template <class Use>
void for_each_section(const VolumeFrame& frame, Use&& use) {
  for (int axis = 0; axis < 3; ++axis) {
    const Section& section = frame.settings.sections[static_cast<std::size_t>(axis)];
    const float at = coordinate(section.position);
    if (section.shown && frame.box.reaches(axis, at)) use(frame.box.cross_section(axis, at));
  }
}

}  // namespace

void SectionalView::draw(const VolumeFrame& frame) {
  const gl::PassMark mark("VolumeRenderer::render_sectional_view");
  draw_slices(frame, false);
  gl::throwOnGLError("VolumeRenderer::render_sectional_view");
}

void SectionalView::pick(const VolumeFrame& frame) {
  draw_slices(frame, true);
}

void SectionalView::draw_slices(const VolumeFrame& frame, bool picking) {
  std::vector<glm::vec3> triangles;
  for_each_section(frame, [&](const CrossSection& corners) {
    for (const std::size_t i : {0, 1, 2, 0, 2, 3}) triangles.push_back(corners[i]);
  });
  if (triangles.empty()) return;
  const bool overlay = frame.source.overlay_present;
  use_volume_program(frame.programs.section(overlay, picking), frame);
  slices_.set_vertices(std::span<const glm::vec3>(triangles));
  const gl::DepthTest depth(GL_LEQUAL, true);
  const gl::PolygonOffset offset(1.0F, 2.0F);
  slices_.draw(GL_TRIANGLES, 0, static_cast<GLsizei>(triangles.size()));
}

void SectionalView::draw_outline(const VolumeFrame& frame) {
  const gl::PassMark mark("VolumeRenderer::render_sectional_view");
  std::vector<glm::vec3> lines;
  for_each_section(frame, [&](const CrossSection& corners) {
    for (std::size_t i = 0; i < 4; ++i) lines.insert(lines.end(), {corners[i], corners[(i + 1) % 4]});
  });
  if (lines.empty()) return;
  const gl::DepthTest depth(GL_LEQUAL);
  draw_model_lines(frame, outlines_, lines, frame.settings.foreground);
  gl::throwOnGLError("VolumeRenderer::render_sectional_view");
}

void SectionalView::release() {
  slices_.release();
  outlines_.release();
}

}  // namespace oct
