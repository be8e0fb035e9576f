#include "volume/passes/sectional_view.h"

#include "core/timing_mark.h"
#include "gl/draw_state.h"
#include "gl/opengl_error.h"
#include "volume/layout/box_view.h"
#include "volume/passes/line_drawing.h"

namespace oct {
namespace {

float coordinate(float position) {
  return 2.0F * position - 1.0F;
}

struct Interval {
  float from;
  float to;
};

// The two parts of an edge of the box that a slice leaves, the one away from the eye first.
std::array<Interval, 2> parted_at(float cut, bool eye_above) {
  const Interval below{-1.0F, cut};
  const Interval above{cut, 1.0F};
  return eye_above ? std::array{below, above} : std::array{above, below};
}

class TriangleList {
 public:
  void add(int axis, float at, Interval second, Interval third) {
    const auto corner = [&](float on_second, float on_third) {
      glm::vec3 point;
      point[axis] = at;
      point[(axis + 1) % 3] = on_second;
      point[(axis + 2) % 3] = on_third;
      return point;
    };
    const std::array<glm::vec3, 4> corners{corner(second.from, third.from), corner(second.to, third.from),
                                           corner(second.to, third.to), corner(second.from, third.to)};
    for (const std::size_t i : {0, 1, 2, 0, 2, 3}) triangles.push_back(corners[i]);
  }

  std::vector<glm::vec3> triangles;
};

}  // namespace

std::vector<glm::vec3> section_triangles(const Sections& sections, const glm::vec4& eye) {
  glm::vec3 at;
  std::array<bool, 3> eye_above{};
  for (int axis = 0; axis < 3; ++axis) {
    at[axis] = coordinate(sections[static_cast<std::size_t>(axis)].position);
    eye_above[static_cast<std::size_t>(axis)] = eye[axis] - at[axis] * eye.w > 0.0F;
  }
  const auto by_x = parted_at(at.x, eye_above[0]);
  const auto by_y = parted_at(at.y, eye_above[1]);
  constexpr Interval whole{-1.0F, 1.0F};

  // Whatever lies beyond a slice comes before it, and what lies on the eye's side after it.
  TriangleList list;
  for (std::size_t x = 0; x < 2; ++x) {
    for (std::size_t y = 0; y < 2; ++y) {
      if (sections[2].shown) list.add(2, at.z, by_x[x], by_y[y]);
      if (y == 0 && sections[1].shown) list.add(1, at.y, whole, by_x[x]);
    }
    if (x == 0 && sections[0].shown) list.add(0, at.x, whole, whole);
  }
  return list.triangles;
}

void SectionalView::draw(const VolumeFrame& frame) {
  const TimingMark mark("VolumeRenderer::render_sectional_view");
  const std::vector<glm::vec3> triangles = section_triangles(frame.settings.sections, eye_in_model(frame.camera));
  if (triangles.empty()) return;
  const bool overlay = frame.source.overlay_present;
  use_volume_program(overlay ? frame.programs.section_overlay : frame.programs.section, frame);
  slices_.set_vertices(std::span<const glm::vec3>(triangles));
  {
    const gl::Blending blending;
    slices_.draw(GL_TRIANGLES, 0, static_cast<GLsizei>(triangles.size()));
  }
  gl::throwOnGLError("VolumeRenderer::render_sectional_view");
}

void SectionalView::draw_outline(const VolumeFrame& frame) {
  const TimingMark mark("VolumeRenderer::render_sectional_view");
  std::vector<glm::vec3> lines;
  for (int axis = 0; axis < 3; ++axis) {
    const Section& section = frame.settings.sections[static_cast<std::size_t>(axis)];
    if (!section.shown) continue;
    const CrossSection quad = cross_section(axis, coordinate(section.position));
    for (std::size_t i = 0; i < 4; ++i) lines.insert(lines.end(), {quad[i], quad[(i + 1) % 4]});
  }
  if (lines.empty()) return;
  draw_model_lines(frame, outlines_, lines, frame.settings.foreground);
  gl::throwOnGLError("VolumeRenderer::render_sectional_view");
}

void SectionalView::release() {
  slices_.release();
  outlines_.release();
}

}  // namespace oct
