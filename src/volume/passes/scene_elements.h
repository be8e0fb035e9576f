// What is drawn around the volume: translucent box, frame with scale marks, clip
// plane border, removed segment.
#pragma once

#include <exception>
#include <memory>
#include <optional>
#include <utility>

#include "gl/geometry.h"
#include "volume/frame/volume_frame.h"
#include "volume/layout/scale_marks.h"
#include "volume/passes/sectional_view.h"
#include "volume/text/font_renderer.h"

namespace oct {

// Elements are parted: before the volume comes what lies behind it, and after it what lies in front.
enum class ElementPass { behind, in_front };

class SceneElements {
 public:
  SectionalView sectional_view;

  void draw_translucent(const VolumeFrame& frame, ElementPass pass);

  // Edges, and in front scale marks, which lie beside the box, by the frame flags. Without any font on the
  // machine marks have no labels; that is thrown once everything else is drawn.
  void draw_frame(const VolumeFrame& frame, ElementPass pass);

  void draw_clip_plane_border(const VolumeFrame& frame, ElementPass pass);
  void draw_removed_segment(const VolumeFrame& frame, ElementPass pass);  // before and after the rays
  void release();  // deletes the OpenGL objects and the text renderers

 private:
  struct Fonts {
    explicit Fonts(int line_height)
        : height(line_height), numbers(line_height, false), captions(line_height, true) {}
    int height;
    FontRenderer numbers;
    FontRenderer captions;
  };

  // The marks of the last frame, which the next one often needs again.
  struct Layout {
    Camera camera;
    glm::vec3 extent;
    ScaleMarks marks;
  };

  void draw_edges(const VolumeFrame& frame, ElementPass pass);
  void draw_scale_marks(const VolumeFrame& frame);
  void draw_labels(const VolumeFrame& frame);
  void provide_fonts(int height);
  const ScaleMarks& marks_of(const VolumeFrame& frame);

  gl::Geometry faces_;
  gl::Geometry edges_;
  gl::Geometry ticks_;
  gl::Geometry border_;
  gl::Geometry removed_;
  std::unique_ptr<Fonts> fonts_;
  std::exception_ptr font_failure_;
  std::optional<Layout> layout_;
};

}  // namespace oct
