#include "data/figure/figure.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "data/figure/canvas.h"
#include "data/figure/lettering.h"
#include "data/figure/scale.h"

namespace oct::app {
namespace {

// A line of text, and the distances that go with it, in whole pixels.
struct Measures {
  explicit Measures(double size) : text(size), line(static_cast<int>(std::lround(size))) {}

  Lettering text;
  int line;                                    // height of a line of text
  int margin = line;                           // around everything
  int gap = std::max(1, line / 2);             // between a bar and its text
  int stroke = std::max(1, line / 6);          // thickness of a scale bar
  int tick = std::max(2, line / 4);            // length of the marks of a colour bar
  int outline = std::max(1, (line + 8) / 16);  // thickness of marks and frames
};

double text_size_of(const FigureStyle& style, PictureSize size) {
  constexpr double lines_per_picture = 26;
  return style.text_size.value_or(std::max(12.0, std::min(size.width, size.height) / lines_per_picture));
}

// The end of a bar that fits into a third of a side.
struct ScaleBar {
  ScaleBar(double mm_per_pixel, unsigned side)
      : mm(round_below(mm_per_pixel * side / 3)),
        pixels(std::max(1, static_cast<int>(std::lround(mm / mm_per_pixel)))) {}

  double mm;
  int pixels;
};

// The colours of a map with values upwards, and numbers beside them.
class ColorBarDrawing {
 public:
  ColorBarDrawing(const ColorBar& bar, const Measures& measures) : bar_(bar), measures_(measures) {
    const auto [low, high] = std::minmax(bar.range.lower, bar.range.upper);
    low_ = low;
    high_ = high;
    const std::vector<double> numbers = round_numbers(low, high);
    const double step = numbers.size() > 1 ? numbers[1] - numbers[0] : high - low;
    for (const double number : numbers) {
      marks_.push_back({number, measures.text.picture_of(number_text(number, step))});
      text_width_ = std::max(text_width_, marks_.back().text.width);
    }
    if (!bar.unit.empty()) unit_ = measures.text.picture_of(bar.unit);
  }

  int width() const {
    return std::max(bar_width() + measures_.tick + measures_.gap / 2 + text_width_, unit_ ? unit_->width : 0);
  }

  void draw(Canvas& canvas, int x, int y, int height) const {
    if (unit_) {
      canvas.write(*unit_, x, y, Alignment::start);
      const int head = unit_->height + measures_.gap / 2;
      y += head;
      height -= head;
    }
    if (height < 2) return;
    for (int row = 0; row < height; ++row) {
      const double value = high_ - (high_ - low_) * (row + 0.5) / height;
      canvas.fill(x, y + row, bar_width(), 1, color_at(value));
    }
    int free_from = y + height + measures_.line;  // texts do not touch, from the lowest upwards
    for (const Mark& mark : marks_) {
      const int place =
          y + static_cast<int>(std::lround((high_ - mark.number) / (high_ - low_) * (height - 1)));
      canvas.fill(x + bar_width(), place - measures_.outline / 2, measures_.tick, measures_.outline,
                  canvas.ink());
      if (place + mark.text.height / 2 > free_from) continue;
      canvas.write(mark.text, x + bar_width() + measures_.tick + measures_.gap / 2, place, Alignment::start,
                   Alignment::middle);
      free_from = place - mark.text.height / 2;
    }
  }

 private:
  struct Mark {
    double number;
    TextPicture text;
  };

  int bar_width() const { return measures_.line; }

  std::uint32_t color_at(double value) const {
    const double part = (value - bar_.range.lower) / (bar_.range.upper - bar_.range.lower);
    const auto count = static_cast<double>(bar_.colors.size());
    const auto index = static_cast<std::size_t>(std::clamp(part * count, 0.0, count - 1));
    const Rgba& color = bar_.colors[index];
    return static_cast<std::uint32_t>(color[0] << 16 | color[1] << 8 | color[2]);
  }

  const ColorBar& bar_;
  const Measures& measures_;
  double low_ = 0;
  double high_ = 1;
  std::vector<Mark> marks_;
  int text_width_ = 0;
  std::optional<TextPicture> unit_;
};

bool are_square(const std::array<double, 2>& pixel_mm) {
  return std::abs(pixel_mm[0] / pixel_mm[1] - 1) < 0.01;
}

}  // namespace

Picture figure_of(const Figure& figure, const FigureStyle& style) {
  const Measures measures(text_size_of(style, figure.picture.size));
  const int width = static_cast<int>(figure.picture.size.width);
  const int height = static_cast<int>(figure.picture.size.height);
  std::optional<ScaleBar> across, down;
  std::optional<TextPicture> across_text, down_text;
  if (figure.pixel_mm) {
    across.emplace((*figure.pixel_mm)[0], figure.picture.size.width);
    across_text = measures.text.picture_of(length_text(across->mm));
    if (!are_square(*figure.pixel_mm)) {
      down.emplace((*figure.pixel_mm)[1], figure.picture.size.height);
      down_text = measures.text.picture_of(length_text(down->mm));
    }
  }
  std::optional<ColorBarDrawing> colors;
  if (figure.color_bar) colors.emplace(*figure.color_bar, measures);

  const int left =
      measures.margin + (down ? down_text->width + measures.gap + measures.stroke + measures.gap : 0);
  const int top = measures.margin;
  const int right = (colors ? measures.gap * 2 + colors->width() : 0) + measures.margin;
  const int below = (across ? measures.gap + across_text->height : 0) + measures.margin;
  // A bar with its text may be wider than a small picture.
  const int content = std::max(width, across ? across->pixels + measures.gap + across_text->width : 0);
  Canvas canvas({static_cast<unsigned>(left + content + right), static_cast<unsigned>(top + height + below)},
                style.paper, style.transparent);
  canvas.put(figure.picture, left, top);
  if (across) {
    const int middle = top + height + measures.gap + across_text->height / 2;
    canvas.fill(left, middle - measures.stroke / 2, across->pixels, measures.stroke, canvas.ink());
    canvas.write(*across_text, left + across->pixels + measures.gap, middle, Alignment::start,
                 Alignment::middle);
  }
  if (down) {
    const int x = left - measures.gap - measures.stroke;
    canvas.fill(x, top + height - down->pixels, measures.stroke, down->pixels, canvas.ink());
    canvas.write(*down_text, x - measures.gap, top + height - down->pixels / 2, Alignment::end,
                 Alignment::middle);
  }
  if (colors) colors->draw(canvas, left + content + measures.gap * 2, top, height);
  return canvas.take();
}

Picture panels_of(const Panels& panels, const FigureStyle& style) {
  const std::vector<Picture>& pictures = panels.pictures;
  const auto count = static_cast<unsigned>(pictures.size());
  const unsigned columns = panels.columns > 0
                               ? std::min(panels.columns, count)
                               : static_cast<unsigned>(std::ceil(std::sqrt(static_cast<double>(count))));
  const unsigned rows = (count + columns - 1) / columns;
  std::vector<int> widths(columns), heights(rows);
  PictureSize smallest = pictures[0].size;
  for (unsigned i = 0; i < count; ++i) {
    const auto [width, height] = pictures[i].size;
    widths[i % columns] = std::max(widths[i % columns], static_cast<int>(width));
    heights[i / columns] = std::max(heights[i / columns], static_cast<int>(height));
    smallest = {std::min(smallest.width, width), std::min(smallest.height, height)};
  }
  const Measures measures(text_size_of(style, smallest));
  const int head = panels.labels.empty() ? 0 : measures.text.picture_of("a").height + measures.gap / 2;
  int total_width = measures.gap, total_height = measures.gap;
  for (const int width : widths) total_width += width + measures.gap;
  for (const int height : heights) total_height += head + height + measures.gap;
  Canvas canvas({static_cast<unsigned>(total_width), static_cast<unsigned>(total_height)}, style.paper,
                style.transparent);
  int y = measures.gap;
  for (unsigned row = 0; row < rows; ++row) {
    int x = measures.gap;
    for (unsigned column = 0; column < columns && row * columns + column < count; ++column) {
      const unsigned i = row * columns + column;
      if (head > 0) canvas.write(measures.text.picture_of(panels.labels[i]), x, y, Alignment::start);
      canvas.put(pictures[i], x, y + head);
      x += widths[column] + measures.gap;
    }
    y += head + heights[row] + measures.gap;
  }
  return canvas.take();
}

}  // namespace oct::app
