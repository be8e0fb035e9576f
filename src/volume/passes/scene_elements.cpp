#include "volume/passes/scene_elements.h"

#include <algorithm>
#include <utility>

#include <glm/gtc/type_ptr.hpp>

#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "gl/trace/pass_mark.h"
#include "volume/layout/box_view.h"

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

// Where there is a clip plane to be seen.
bool cuts_volume(const VolumeFrame& frame) {
  return frame.volume_shown() && !frame.sectional() && frame.clip_plane.enabled();
}

bool shows_removed_segment(const VolumeFrame& frame) {
  return cuts_volume(frame) && frame.settings.remove_segment;
}

}  // namespace

// Draws parts of one buffer one after the other, blended, in the foreground's colour.
class SceneElements::Brush {
 public:
  Brush(const VolumeFrame& frame, const KeptVertices& vertices)
      : program_(frame.programs.simple()), color_(frame.settings.foreground) {
    program_.use();
    vertices.bind();
  }

  void set_matrices(const glm::mat4& projection, const glm::mat4& modelview) const {
    glUniformMatrix4fv(program_.projection, 1, GL_FALSE, glm::value_ptr(projection));
    glUniformMatrix4fv(program_.modelview, 1, GL_FALSE, glm::value_ptr(modelview));
  }

  void draw(GLenum mode, const Part& part, float opacity) {
    if (part.count == 0) return;
    if (opacity != opacity_) glUniform4f(program_.color, color_.r, color_.g, color_.b, opacity);
    opacity_ = opacity;
    glDrawArrays(mode, part.first, part.count);
  }

 private:
  const SimpleProgram& program_;
  const glm::vec3 color_;
  float opacity_ = -1.0F;  // that the program has
  const gl::Blending blending_;
  const gl::SmoothLines smooth_;
};

void SceneElements::KeptVertices::upload(const std::vector<glm::vec3>& vertices) {
  if (vertices.empty() || accepted_ == vertices) return;
  accepted_.reset();
  geometry_.set_vertices(std::span<const glm::vec3>(vertices));
  gl::throwOnGLError("VolumeRenderer::elements changed");
  accepted_ = vertices;
}

void SceneElements::KeptVertices::release() {
  geometry_.release();
  accepted_.reset();
}

SceneElements::Part SceneElements::Layout::add(const std::vector<glm::vec3>& part) {
  const auto first = static_cast<GLint>(vertices.size());
  vertices.insert(vertices.end(), part.begin(), part.end());
  return {first, static_cast<GLsizei>(part.size())};
}

void SceneElements::arrange(const VolumeFrame& frame) {
  layout_ = {};
  const FrameFlags& flags = frame.settings.frame;
  const glm::vec4 eye = eye_in_model(frame.camera);
  if (flags.box && frame.volume_shown()) {
    layout_.far_panes = layout_.add(box_faces(eye, false));
    layout_.near_panes = layout_.add(box_faces(eye, true));
  }
  if (flags.edges) {
    layout_.far_edges = layout_.add(box_edges(eye, false));
    layout_.near_edges = layout_.add(box_edges(eye, true));
  }
  if (cuts_volume(frame)) layout_.border = layout_.add(frame.clip_plane.border());
  if (shows_removed_segment(frame))
    layout_.removed_panes = layout_.add(frame.box.removed_faces(frame.clip_plane.plane()));
  box_.upload(layout_.vertices);
}

void SceneElements::provide_marks(const VolumeFrame& frame) {
  const gl::PassMark mark("prepare labels");
  font_failure_ = nullptr;
  try {
    provide_fonts(font_height(frame.camera.viewport));
  } catch (...) {
    font_failure_ = std::current_exception();
  }
  update_marks(frame);
  ticks_.upload(marks_->marks.ticks);
  if (fonts_) fonts_->show(marks_->labels);
}

void SceneElements::provide_fonts(int height) {
  if (fonts_ && fonts_->height() == height) return;
  fonts_.reset();
  marks_.reset();
  fonts_ = std::make_unique<FontRenderer>(height);
}

void SceneElements::update_marks(const VolumeFrame& frame) {
  const Camera& camera = frame.camera;
  const glm::vec3& extent = frame.range.extent;
  const bool known = marks_ && marks_->extent == extent && marks_->camera.modelview == camera.modelview &&
                     marks_->camera.whole_projection == camera.whole_projection &&
                     marks_->camera.viewport.width == camera.viewport.width &&
                     marks_->camera.viewport.height == camera.viewport.height;
  if (known) return;
  const MeasureText measure = [this](const std::string& text, bool caption) {
    return fonts_ ? fonts_->size({text, caption}) : glm::ivec2(0);
  };
  const MarkStyle style = MarkStyle::for_font(font_height(camera.viewport));
  marks_ = Marks{camera, extent, scale_marks(camera, extent, style, measure), {}};
  for (const MarkLabel& label : marks_->marks.labels)
    marks_->labels.push_back({{label.text, label.caption}, label.anchor, label.offset});
}

void SceneElements::draw_behind(const VolumeFrame& frame) {
  arrange(frame);
  {
    Brush brush(frame, box_);
    brush.set_matrices(frame.camera.projection, frame.camera.element_modelview);
    const gl::DepthTest depth(GL_LEQUAL);
    if (frame.volume_shown()) {
      const gl::PassMark mark("VolumeRenderer::render_elements");
      // What lies on the far faces is seen before them, and what lies on the near ones through them. Surfaces,
      // which are moved farthest, have four units.
      const gl::PolygonOffset offset(1.0F, 5.0F);
      brush.draw(GL_TRIANGLES, layout_.far_panes, far_pane);
    }
    {
      const gl::PassMark mark("VolumeRenderer::render_frame");
      brush.draw(GL_LINES, layout_.far_edges, 1.0F);
    }
    if (cuts_volume(frame)) draw_border(brush, false);
    if (shows_removed_segment(frame) && !frame.cut_faces_viewer()) draw_removed_segment(brush);
  }
  gl::throwOnGLError("VolumeRenderer::render_elements");
}

void SceneElements::draw_in_front(const VolumeFrame& frame) {
  if (frame.settings.frame.scale_marks) provide_marks(frame);
  {
    Brush brush(frame, box_);  // its matrices are still those of the first half
    const gl::DepthTest depth(GL_LEQUAL);
    // The plane parts the box: one side of it lies in front of the other as a whole.
    if (shows_removed_segment(frame) && frame.cut_faces_viewer()) draw_removed_segment(brush);
    // The rays covered the border's part on the cut.
    if (cuts_volume(frame)) draw_border(brush, true);
    if (frame.volume_shown()) {
      const gl::PassMark mark("VolumeRenderer::render_elements");
      brush.draw(GL_TRIANGLES, layout_.near_panes, near_pane);
    }
    const gl::PassMark mark("VolumeRenderer::render_frame");
    brush.draw(GL_LINES, layout_.near_edges, 1.0F);
    if (frame.settings.frame.scale_marks) draw_scale_marks(frame, brush);
  }
  gl::throwOnGLError("VolumeRenderer::render_frame");
  if (font_failure_) std::rethrow_exception(std::exchange(font_failure_, nullptr));
}

void SceneElements::draw_border(Brush& brush, bool in_front) const {
  const gl::PassMark mark("VolumeRenderer::render_clip_plane_border");
  if (layout_.border.count == 0) return;
  if (in_front) {
    // All of it, faintly, so that the cut can be followed where the volume hides it.
    const gl::PassMark overlay_mark("VolumeRenderer::render_clip_plane_border::draw_overlay");
    glDepthFunc(GL_ALWAYS);
    brush.draw(GL_LINES, layout_.border, hidden_border);
    glDepthFunc(GL_LEQUAL);
  }
  brush.draw(GL_LINES, layout_.border, 1.0F);
}

void SceneElements::draw_removed_segment(Brush& brush) const {
  const gl::PassMark mark("VolumeRenderer::render_removed_segment");
  brush.draw(GL_TRIANGLES, layout_.removed_panes, removed_pane);
}

void SceneElements::draw_scale_marks(const VolumeFrame& frame, Brush& brush) const {
  const gl::PassMark mark("draw scale marks");
  ticks_.bind();
  brush.set_matrices(frame.camera.to_target, glm::mat4(1.0F));
  brush.draw(GL_LINES, {0, static_cast<GLsizei>(marks_->marks.ticks.size())}, 1.0F);
  const Viewport& target = frame.camera.target;
  const LabelView view{frame.camera.projection, frame.camera.modelview, {target.width, target.height}};
  if (fonts_) fonts_->draw(glm::vec3(frame.settings.foreground), view);
}

void SceneElements::release() {
  sectional_view.release();
  layout_ = {};
  box_.release();
  ticks_.release();
  fonts_.reset();
  marks_.reset();
}

}  // namespace oct
