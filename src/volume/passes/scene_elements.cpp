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
constexpr float farPane = 0.10F;
constexpr float nearPane = 0.03F;
constexpr float removedPane = 0.10F;
constexpr float hiddenBorder = 0.35F;

// Text grows with the picture, so that one rendered large for print reads like one on the screen.
int fontHeight(const Viewport& viewport) {
  constexpr int linesPerPicture = 40;
  return std::clamp((viewport.height + linesPerPicture / 2) / linesPerPicture, 14, 64);
}

glm::vec4 foreground(const VolumeFrame& frame, float opacity) {
  return {glm::vec3(frame.settings.foreground), opacity};
}

class DepthWritesOff {
 public:
  DepthWritesOff() {
    glGetBooleanv(GL_DEPTH_WRITEMASK, &were_);
    glDepthMask(GL_FALSE);
  }
  ~DepthWritesOff() { glDepthMask(were_); }
  DepthWritesOff(const DepthWritesOff&) = delete;
  DepthWritesOff& operator=(const DepthWritesOff&) = delete;

 private:
  GLboolean were_ = GL_TRUE;
};

void drawFaces(gl::Geometry& geometry, const std::vector<glm::vec3>& triangles) {
  const gl::Blending blending;
  geometry.setVertices(std::span<const glm::vec3>(triangles));
  geometry.draw(GL_TRIANGLES, 0, static_cast<GLsizei>(triangles.size()));
}

}  // namespace

void SceneElements::drawTranslucent(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_elements");
  if (!frame.settings.frame.box) return;
  const bool near = pass == ElementPass::inFront;
  const std::vector<glm::vec3> triangles = boxFaces(eyeInModel(frame.camera), near);
  if (triangles.empty()) return;
  useSimpleProgram(frame, foreground(frame, near ? nearPane : farPane));
  {
    // The far faces lie behind, the near ones before all that the box holds.
    const gl::ScopedDisable untested(GL_DEPTH_TEST);
    drawFaces(faces_, triangles);
  }
  gl::throwOnGLError("VolumeRenderer::render_elements");
}

void SceneElements::drawFrame(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_frame");
  if (frame.settings.frame.edges) drawEdges(frame);
  if (frame.settings.frame.scaleMarks) drawScaleMarks(frame);
  gl::throwOnGLError("VolumeRenderer::render_frame");
  if (pass == ElementPass::inFront && fontFailure_)
    std::rethrow_exception(std::exchange(fontFailure_, nullptr));
}

void SceneElements::drawEdges(const VolumeFrame& frame) {
  drawModelLines(frame, edges_, boxEdges(), frame.settings.foreground);
}

void SceneElements::drawScaleMarks(const VolumeFrame& frame) {
  try {
    provideFonts(fontHeight(frame.camera.viewport));
  } catch (...) {
    fontFailure_ = std::current_exception();
  }
  const std::vector<glm::vec3>& ticks = marksOf(frame).ticks;
  if (!ticks.empty()) drawScreenLines(frame, ticks_, ticks, frame.settings.foreground);
  if (fonts_) drawLabels(frame);
}

void SceneElements::drawLabels(const VolumeFrame& frame) {
  const Viewport& viewport = frame.camera.viewport;
  const LabelView view{frame.camera.projection, frame.camera.modelview, {viewport.width, viewport.height}};
  const glm::vec3 color(frame.settings.foreground);
  for (const MarkLabel& label : marksOf(frame).labels) {
    FontRenderer& font = label.caption ? fonts_->captions : fonts_->numbers;
    font.draw({label.text, label.anchor, label.offset}, color, view);
  }
}

void SceneElements::provideFonts(int height) {
  if (fonts_ && fonts_->height == height) return;
  fonts_.reset();
  layout_.reset();
  fonts_ = std::make_unique<Fonts>(height);
}

const ScaleMarks& SceneElements::marksOf(const VolumeFrame& frame) {
  const Camera& camera = frame.camera;
  const glm::vec3& extent = frame.settings.range.extent;
  const bool known = layout_ && layout_->extent == extent && layout_->camera.modelview == camera.modelview &&
                     layout_->camera.projection == camera.projection &&
                     layout_->camera.viewport.width == camera.viewport.width &&
                     layout_->camera.viewport.height == camera.viewport.height;
  if (!known) {
    const MeasureText measure = [this](const std::string& text, bool caption) {
      if (!fonts_) return glm::ivec2(0);
      return (caption ? fonts_->captions : fonts_->numbers).size(text);
    };
    const MarkStyle style = MarkStyle::forFont(fontHeight(camera.viewport));
    layout_ = Layout{camera, extent, scaleMarks(camera, extent, style, measure)};
  }
  return layout_->marks;
}

void SceneElements::drawClipPlaneBorder(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_clip_plane_border");
  const std::vector<glm::vec3>& lines = frame.clipPlane.border();
  if (lines.empty()) return;
  // No depth: the soft rims of a line would keep the rays out and leave a fringe of background.
  const DepthWritesOff depth;
  if (pass == ElementPass::inFront) {
    // All of it, faintly, so that the cut can be followed where the volume hides it.
    const TimingMark overlayMark("VolumeRenderer::render_clip_plane_border::draw_overlay");
    const gl::ScopedDisable untested(GL_DEPTH_TEST);
    drawModelLines(frame, border_, lines, foreground(frame, hiddenBorder));
    gl::throwOnGLError("VolumeRenderer::render_clip_plane_border::draw_overlay");
  }
  drawModelLines(frame, border_, lines, frame.settings.foreground);
  gl::throwOnGLError("VolumeRenderer::render_clip_plane_border");
}

void SceneElements::drawRemovedSegment(const VolumeFrame& frame, ElementPass pass) {
  const TimingMark mark("VolumeRenderer::render_removed_segment");
  if (!frame.clipPlane.enabled()) return;
  // The plane parts the box: one side of it lies in front of the other as a whole.
  const bool inFront = frame.cutFacesViewer();
  if (inFront != (pass == ElementPass::inFront)) return;
  const std::vector<glm::vec3> triangles = removedFaces(frame.clipPlane.plane());
  if (triangles.empty()) return;
  useSimpleProgram(frame, foreground(frame, removedPane));
  {
    const gl::ScopedDisable untested(GL_DEPTH_TEST);
    drawFaces(removed_, triangles);
  }
  gl::throwOnGLError("VolumeRenderer::render_removed_segment");
}

void SceneElements::release() {
  sectionalView.release();
  faces_.release();
  edges_.release();
  ticks_.release();
  border_.release();
  removed_.release();
  fonts_.reset();
  layout_.reset();
}

}  // namespace oct
