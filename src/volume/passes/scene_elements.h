// What is drawn around the volume: translucent box, frame with scale marks, clip
// plane border, removed segment.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <vector>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"
#include "volume/layout/scale_marks.h"
#include "volume/passes/sectional_view.h"
#include "volume/text/font_renderer.h"

namespace oct {

// Elements are parted: before the volume comes what lies behind it, and after it what lies in front. The box's lines
// and panes are one buffer, all ticks another and all labels a third, which are uploaded when they change.
class SceneElements {
 public:
  SectionalView sectional_view;

  // The first half of a frame.
  void draw_behind(const VolumeFrame& frame);

  // Of the same frame. Scale marks, which lie beside the box, are made here and come last. Without any font on the
  // machine they have no labels; that is thrown once everything else is drawn.
  void draw_in_front(const VolumeFrame& frame);

  void release();  // deletes the OpenGL objects and the text renderers

 private:
  class Brush;

  // Vertices, uploaded when they are not those that OpenGL has accepted last.
  class KeptVertices {
   public:
    void upload(const std::vector<glm::vec3>& vertices);
    void bind() const { geometry_.bind(); }
    void release();

   private:
    gl::Geometry geometry_{"scene elements"};
    std::optional<std::vector<glm::vec3>> accepted_;
  };

  // Of a buffer.
  struct Part {
    GLint first = 0;
    GLsizei count = 0;
  };
  struct Layout {
    std::vector<glm::vec3> vertices;
    Part far_panes, near_panes, removed_panes;  // triangles
    Part far_edges, near_edges, border;         // lines

    Part add(const std::vector<glm::vec3>& part);
  };

  // The marks of the last frame, which the next one often needs again.
  struct Marks {
    Camera camera;
    glm::vec3 extent;
    ScaleMarks marks;
    std::vector<Label> labels;
  };

  void arrange(const VolumeFrame& frame);
  void provide_marks(const VolumeFrame& frame);
  void provide_fonts(int height);
  void update_marks(const VolumeFrame& frame);

  void draw_border(Brush& brush, bool in_front) const;
  void draw_removed_segment(Brush& brush) const;
  void draw_scale_marks(const VolumeFrame& frame, Brush& brush) const;

  Layout layout_;
  KeptVertices box_;
  KeptVertices ticks_;  // normalised device coordinates
  std::unique_ptr<FontRenderer> fonts_;
  std::exception_ptr font_failure_;
  std::optional<Marks> marks_;
};

}  // namespace oct
