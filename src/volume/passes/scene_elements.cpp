#include "volume/passes/scene_elements.h"

#include <algorithm>

#include "core/timing_mark.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "volume/layout/box_view.h"
#include "volume/passes/line_drawing.h"

namespace oct {
namespace {

// Opacities. The far side of the box is a pane that sets the scene off from the background; the near side is
// a hint of glass that leaves the volume its colours.
constexpr float far_pane = 0.10F;
constexpr float near_pane = 0.03F;
constexpr float removed_pane = 0.10F;
constexpr float hidden_border = 0.35F;

// Text grows with the picture, so that one rendered large for print reads like one on the screen.
int font_height(const Viewport& viewport) {
  constexpr int lines_per_picture = 40;
  return std::clamp((viewport.height + lines_per_picture / 2) / lines_per_picture, 14, 64);
}

glm::vec4 foreground(const VolumeFrame& frame, float opacity) {
  return {glm::vec3(frame.settings.foreground), opacity};
}

void draw_faces(gl::Geometry& geometry, const std::vector<glm::vec3>& triangles) {
  const gl::Blending blending;
  geometry.set_vertices(std::span<const glm::vec3>(triangles));
  geometry.draw(GL_TRIANGLES, 0, static_cast<GLsizei>(triangles.size()));
}

}  // namespace

void SceneElements::draw_translucent(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_elements");
  if (!frame.settings.frame.box) return;
  const bool near = pass == ElementPass::in_front;
  const std::vector<glm::vec3> triangles = box_faces(eye_in_model(frame.camera), near);
  if (triangles.empty()) return;
  use_simple_program(frame, foreground(frame, near ? near_pane : far_pane));
  {
    // What lies on the far faces is seen before them, and what lies on the near ones through them. Surfaces,
    // which are moved farthest, have four units.
    const gl::DepthTest depth(GL_LEQUAL, false, near ? gl::PolygonOffset{} : gl::PolygonOffset{1.0F, 5.0F});
    draw_faces(faces_, triangles);
  }
  gl::throwOnGLError("VolumeRenderer::render_elements");
}

void SceneElements::draw_frame(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_frame");
  const gl::DepthTest depth(GL_LEQUAL);
  if (frame.settings.frame.edges) draw_edges(frame, pass);
  if (frame.settings.frame.scale_marks && pass == ElementPass::in_front) draw_scale_marks(frame);
  gl::throwOnGLError("VolumeRenderer::render_frame");
  if (font_failure_) std::rethrow_exception(std::exchange(font_failure_, nullptr));
}

void SceneElements::draw_edges(const VolumeFrame& frame, ElementPass pass) {
  const std::vector<glm::vec3> lines = box_edges(eye_in_model(frame.camera), pass == ElementPass::in_front);
  if (!lines.empty()) draw_model_lines(frame, edges_, lines, frame.settings.foreground);
}

void SceneElements::draw_scale_marks(const VolumeFrame& frame) {
  try {
    provide_fonts(font_height(frame.camera.viewport));
  } catch (...) {
    font_failure_ = std::current_exception();
  }
  const std::vector<glm::vec3>& ticks = marks_of(frame).ticks;
  if (!ticks.empty()) draw_screen_lines(frame, ticks_, ticks, frame.settings.foreground);
  if (fonts_) draw_labels(frame);
}

void SceneElements::draw_labels(const VolumeFrame& frame) {
  const Viewport& viewport = frame.camera.viewport;
  const LabelView view{frame.camera.projection, frame.camera.modelview, {viewport.width, viewport.height}};
  const glm::vec3 color(frame.settings.foreground);
  for (const MarkLabel& label : marks_of(frame).labels) {
    FontRenderer& font = label.caption ? fonts_->captions : fonts_->numbers;
    font.draw({label.text, label.anchor, label.offset}, color, view);
  }
}

void SceneElements::provide_fonts(int height) {
  if (fonts_ && fonts_->height == height) return;
  fonts_.reset();
  layout_.reset();
  fonts_ = std::make_unique<Fonts>(height);
}

const ScaleMarks& SceneElements::marks_of(const VolumeFrame& frame) {
  const Camera& camera = frame.camera;
  const glm::vec3& extent = frame.range.extent;
  const bool known = layout_ && layout_->extent == extent && layout_->camera.modelview == camera.modelview &&
                     layout_->camera.projection == camera.projection &&
                     layout_->camera.viewport.width == camera.viewport.width &&
                     layout_->camera.viewport.height == camera.viewport.height;
  if (!known) {
    const MeasureText measure = [this](const std::string& text, bool caption) {
      if (!fonts_) return glm::ivec2(0);
      return (caption ? fonts_->captions : fonts_->numbers).size(text);
    };
    const MarkStyle style = MarkStyle::for_font(font_height(camera.viewport));
    layout_ = Layout{camera, extent, scale_marks(camera, extent, style, measure)};
  }
  return layout_->marks;
}

void SceneElements::draw_clip_plane_border(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_clip_plane_border");
  const std::vector<glm::vec3>& lines = frame.clip_plane.border();
  if (lines.empty()) return;
  if (pass == ElementPass::in_front) {
    // All of it, faintly, so that the cut can be followed where the volume hides it.
    const TimingMark overlay_mark("VolumeRenderer::render_clip_plane_border::draw_overlay");
    draw_model_lines(frame, border_, lines, foreground(frame, hidden_border));
    gl::throwOnGLError("VolumeRenderer::render_clip_plane_border::draw_overlay");
  }
  const gl::DepthTest depth(GL_LEQUAL);
  draw_model_lines(frame, border_, lines, frame.settings.foreground);
  gl::throwOnGLError("VolumeRenderer::render_clip_plane_border");
}

void SceneElements::draw_removed_segment(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_removed_segment");
  if (!frame.clip_plane.enabled()) return;
  // The plane parts the box: one side of it lies in front of the other as a whole.
  const bool in_front = frame.cut_faces_viewer();
  if (in_front != (pass == ElementPass::in_front)) return;
  const std::vector<glm::vec3> triangles = frame.box.removed_faces(frame.clip_plane.plane());
  if (triangles.empty()) return;
  use_simple_program(frame, foreground(frame, removed_pane));
  {
    const gl::DepthTest depth(GL_LEQUAL);
    draw_faces(removed_, triangles);
  }
  gl::throwOnGLError("VolumeRenderer::render_removed_segment");
}

void SceneElements::release() {
  sectional_view.release();
  faces_.release();
  edges_.release();
  ticks_.release();
  border_.release();
  removed_.release();
  fonts_.reset();
  layout_.reset();
}

}  // namespace oct
