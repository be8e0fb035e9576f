#include "volume/layout/scale_marks.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <optional>

#include "volume/layout/box_view.h"

namespace oct {
namespace {

constexpr double intervals = 6.0;  // a step is chosen for at most so many of them over an axis
constexpr const char* unit = " mm";
constexpr float shortest_axis = 24.0F;  // pixels; a shorter one is seen end on and carries no marks

struct Axis {
  const char* caption;
  int model;   // index of the model coordinate
  int extent;  // index in the range, whose first entry is axial
};

constexpr std::array<Axis, 3> axes{{{"x (mm)", 0, 1}, {"depth (mm)", 1, 0}, {"y (mm)", 2, 2}}};

// The edge of the box that carries an axis's marks.
struct MarkedEdge {
  glm::vec3 start;  // model coordinates; the axis's zero
  glm::vec3 end;
  glm::vec2 outwards;  // on the screen, of length 1

  glm::vec3 at(float part) const { return glm::mix(start, end, part); }
};

struct Rectangle {
  glm::vec2 low;
  glm::vec2 high;

  bool overlaps(const Rectangle& other) const {
    return low.x < other.high.x && other.low.x < high.x && low.y < other.high.y && other.low.y < high.y;
  }
  bool inside(Viewport viewport) const {
    return low.x >= 0.0F && low.y >= 0.0F && high.x <= static_cast<float>(viewport.width) &&
           high.y <= static_cast<float>(viewport.height);
  }
};

Rectangle frame_of(const MarkLabel& label, float margin) {
  return {label.position - margin, label.position + glm::vec2(label.size) + margin};
}

bool fits(const MarkLabel& label, Viewport viewport, const MarkStyle& style,
          const std::vector<MarkLabel>& others) {
  const Rectangle frame = frame_of(label, 0.0F);
  return frame.inside(viewport) && std::none_of(others.begin(), others.end(), [&](const MarkLabel& other) {
           return frame.overlaps(frame_of(other, 0.5F * style.gap));
         });
}

// Lays out the marks of one axis.
class AxisLayout {
 public:
  AxisLayout(const Camera& camera, const MarkStyle& style, const MeasureText& measure, const MarkedEdge& edge,
             double extent)
      : camera_(camera), style_(style), measure_(measure), edge_(edge), extent_(extent) {}

  // The numbers of the smallest step at which neighbours have room.
  std::vector<MarkLabel> numbers() {
    std::vector<MarkLabel> result = numbers_of(step_);
    while (crowded(result)) {
      step_ = step_.next();
      result = numbers_of(step_);
    }
    return result;
  }

  // Beside the numbers, near the middle of the axis; none where the picture has no room for it.
  std::optional<MarkLabel> caption(const char* text, const std::vector<MarkLabel>& numbers,
                                   const std::vector<MarkLabel>& others) const {
    float reach = 0.0F;  // of the numbers beyond the ticks
    for (const MarkLabel& number : numbers) reach = std::max(reach, 2.0F * support(number.size));
    const float distance = style_.tick + style_.gap + (numbers.empty() ? 0.0F : reach + style_.gap);
    for (const float part : {0.5F, 0.4F, 0.6F, 0.3F, 0.7F, 0.2F, 0.8F, 0.1F, 0.9F}) {
      const MarkLabel label = label_at(part, text, true, distance);
      if (fits(label, numbers) && fits(label, others)) return label;
    }
    return std::nullopt;
  }

  // What else tells the unit: the last number with room for it, which takes the plain one's place.
  std::optional<MarkLabel> number_with_unit(std::vector<MarkLabel>& numbers,
                                            const std::vector<MarkLabel>& others) const {
    for (std::size_t i = numbers.size(); i-- > 0;) {
      const MarkLabel label = number_at(static_cast<int>(i), step_, unit);
      if (!fits(label, others)) continue;
      numbers.erase(numbers.begin() + static_cast<std::ptrdiff_t>(i));
      return label;
    }
    return std::nullopt;
  }

  bool fits(const MarkLabel& label, const std::vector<MarkLabel>& others) const {
    return oct::fits(label, camera_.viewport, style_, others);
  }

  void add_ticks(std::vector<glm::vec3>& ticks) const {
    add_ticks(ticks, step_.value(), style_.tick);
    const double count = extent_ / step_.minor();
    const glm::vec2 length = *window(1.0F) - *window(0.0F);
    if (glm::length(length) / static_cast<float>(count) >= style_.minor_spacing) {
      add_ticks(ticks, step_.minor(), style_.minor_tick);
    }
  }

 private:
  static int multiples(double length, double step) {
    return static_cast<int>(std::floor(length / step * (1.0 + 1e-9)));
  }

  std::optional<glm::vec2> window(float part) const {
    const auto point = on_screen(camera_, edge_.at(part));
    if (!point) return std::nullopt;
    return glm::vec2(*point);
  }

  // Distance from the middle of a text to its rim, against the direction in which it is shifted.
  float support(const glm::ivec2& size) const {
    return 0.5F * (std::abs(edge_.outwards.x) * static_cast<float>(size.x) +
                   std::abs(edge_.outwards.y) * static_cast<float>(size.y));
  }

  MarkLabel label_at(float part, std::string text, bool caption, float distance) const {
    MarkLabel label;
    label.size = measure_(text, caption);
    label.text = std::move(text);
    label.caption = caption;
    label.anchor = edge_.at(part);
    const glm::vec2 anchor = *window(part);
    const glm::vec2 middle = anchor + edge_.outwards * (distance + support(label.size));
    label.position = glm::round(middle - 0.5F * glm::vec2(label.size));  // whole pixels keep glyphs sharp
    label.offset = label.position - anchor;
    return label;
  }

  MarkLabel number_at(int index, const TickStep& step, const char* suffix) const {
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%.*f%s", step.decimals(), index * step.value(), suffix);
    return label_at(static_cast<float>(index * step.value() / extent_), text.data(), false,
                    style_.tick + style_.gap);
  }

  std::vector<MarkLabel> numbers_of(const TickStep& step) const {
    std::vector<MarkLabel> result;
    for (int i = 0; i <= multiples(extent_, step.value()); ++i) result.push_back(number_at(i, step, ""));
    return result;
  }

  bool crowded(const std::vector<MarkLabel>& labels) const {
    for (std::size_t i = 1; i < labels.size(); ++i) {
      if (frame_of(labels[i - 1], style_.gap).overlaps(frame_of(labels[i], 0.0F))) return true;
    }
    return false;
  }

  void add_ticks(std::vector<glm::vec3>& ticks, double step, float length) const {
    const glm::vec2 viewport(camera_.viewport.width, camera_.viewport.height);
    const auto device = [&](const glm::vec2& position, float depth) {
      return glm::vec3(position / viewport * 2.0F - 1.0F, depth);
    };
    for (int i = 0; i <= multiples(extent_, step); ++i) {
      const glm::vec3 foot = *on_screen(camera_, edge_.at(static_cast<float>(i * step / extent_)));
      const glm::vec2 tip = glm::vec2(foot) + length * edge_.outwards;
      ticks.insert(ticks.end(), {device(glm::vec2(foot), foot.z), device(tip, foot.z)});
    }
  }

  const Camera& camera_;
  const MarkStyle& style_;
  const MeasureText& measure_;
  MarkedEdge edge_;
  double extent_;
  TickStep step_ = TickStep::at_least(extent_ / intervals);
};

// One of the four edges along an axis; none where it is hidden inside the outline or too short on the screen.
std::optional<MarkedEdge> outline_edge(const Camera& camera, const glm::vec4& eye, int axis, float second,
                                       float third) {
  const BoxFace faces[] = {{(axis + 1) % 3, second}, {(axis + 2) % 3, third}};
  if (faces_viewer(faces[0], eye) == faces_viewer(faces[1], eye)) return std::nullopt;
  MarkedEdge edge;
  edge.start[axis] = -1.0F;
  edge.end[axis] = 1.0F;
  for (const BoxFace& face : faces) edge.start[face.axis] = edge.end[face.axis] = face.side;

  const auto start = on_screen(camera, edge.start);
  const auto end = on_screen(camera, edge.end);
  const auto centre = on_screen(camera, glm::vec3(0.0F));
  if (!start || !end || !centre) return std::nullopt;
  const glm::vec2 along(*end - *start);
  const float length = glm::length(along);
  if (length < shortest_axis) return std::nullopt;
  edge.outwards = glm::vec2(along.y, -along.x) / length;
  if (glm::dot(edge.outwards, glm::vec2(*start - *centre)) < 0.0F) edge.outwards = -edge.outwards;
  return edge;
}

std::optional<MarkedEdge> marked_edge(const Camera& camera, int axis) {
  const glm::vec4 eye = eye_in_model(camera);
  std::optional<MarkedEdge> best;
  float best_rank = 0.0F;
  for (const float second : {-1.0F, 1.0F}) {
    for (const float third : {-1.0F, 1.0F}) {
      const auto edge = outline_edge(camera, eye, axis, second, third);
      if (!edge) continue;
      const glm::vec3 middle = *on_screen(camera, edge->at(0.5F));
      // The labels of an upright edge stand beside it.
      const bool upright = std::abs(edge->outwards.x) > std::abs(edge->outwards.y);
      const float rank = upright ? middle.x : middle.y;
      if (!best || rank < best_rank) {
        best = edge;
        best_rank = rank;
      }
    }
  }
  return best;
}

}  // namespace

TickStep TickStep::at_least(double value) {
  int exponent = static_cast<int>(std::floor(std::log10(value)));
  if (std::pow(10.0, exponent) > value) --exponent;  // a logarithm rounded up
  TickStep step(1, exponent);
  while (step.value() < value * (1.0 - 1e-9)) step = step.next();
  return step;
}

double TickStep::value() const {
  // Division is exact where powers below one would not be.
  return exponent_ >= 0 ? mantissa_ * std::pow(10.0, exponent_) : mantissa_ / std::pow(10.0, -exponent_);
}

TickStep TickStep::next() const {
  switch (mantissa_) {
    case 1:
      return {2, exponent_};
    case 2:
      return {5, exponent_};
    default:
      return {1, exponent_ + 1};
  }
}

double TickStep::minor() const {
  return value() / (mantissa_ == 2 ? 4.0 : 5.0);
}
int TickStep::decimals() const {
  return std::max(0, -exponent_);
}

MarkStyle MarkStyle::for_font(int height) {
  const float em = static_cast<float>(height);
  return {0.4F * em, 0.2F * em, 0.25F * em, 0.25F * em};
}

ScaleMarks scale_marks(const Camera& camera, const glm::vec3& extent, const MarkStyle& style,
                       const MeasureText& measure) {
  struct MarkedAxis {
    AxisLayout layout;
    const char* caption;
    std::vector<MarkLabel> numbers;
  };
  std::vector<MarkedAxis> marked;
  ScaleMarks marks;
  for (const Axis& axis : axes) {
    const auto length = static_cast<double>(std::abs(extent[axis.extent]));
    const auto edge = marked_edge(camera, axis.model);
    if (!edge || !std::isfinite(length) || length <= 0.0) continue;
    AxisLayout layout(camera, style, measure, *edge, length);
    std::vector<MarkLabel> numbers = layout.numbers();
    layout.add_ticks(marks.ticks);
    marked.push_back({std::move(layout), axis.caption, std::move(numbers)});
  }

  // What tells the unit comes first; a number gives way to whatever stands in its place already.
  for (MarkedAxis& axis : marked) {
    auto label = axis.layout.caption(axis.caption, axis.numbers, marks.labels);
    if (!label) label = axis.layout.number_with_unit(axis.numbers, marks.labels);
    if (label) marks.labels.push_back(std::move(*label));
  }
  for (const MarkedAxis& axis : marked) {
    for (const MarkLabel& number : axis.numbers) {
      if (fits(number, camera.viewport, style, marks.labels)) marks.labels.push_back(number);
    }
  }
  return marks;
}

}  // namespace oct
