#include "scene/slice_scene.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <utility>
#include <vector>

#include "client/explanation.h"
#include "client/renderers.h"
#include "scene/display_layers.h"
#include "scene/offscreen_picture.h"

namespace oct::app {
namespace {

// Pixels and samples along one axis.
class Scale {
 public:
  Scale(double begin, double extent, unsigned pixels, std::size_t samples)
      : begin_(begin), extent_(extent), pixels_(pixels), samples_(static_cast<double>(samples)) {}

  // The sample below the pixel's centre. At even reductions and in between the centre lies on the border of two samples:
  // rounding must not take it below.
  double sample_below(unsigned pixel) const {
    constexpr double rounding = 1e-9;
    return std::floor(begin_ + (2.0 * pixel + 1.0) * extent_ / (2.0 * pixels_) + rounding);
  }

  std::size_t index_of(unsigned pixel) const {
    return static_cast<std::size_t>(std::clamp(sample_below(pixel), 0.0, samples_ - 1));
  }

  std::size_t samples_per_pixel() const {
    return static_cast<std::size_t>(std::clamp(std::floor(extent_ / pixels_ + 1e-9), 1.0, samples_));
  }

  // The first and the number of the pixels on the samples.
  std::pair<unsigned, unsigned> visible() const {
    unsigned first = 0;
    while (first < pixels_ && sample_below(first) < 0) ++first;
    unsigned last = pixels_;
    while (last > first && sample_below(last - 1) >= samples_) --last;
    return {first, last - first};
  }

 private:
  const double begin_;
  const double extent_;
  const unsigned pixels_;
  const double samples_;
};

Scale across(const Image& slice, const SliceArea& area, PictureSize size) {
  return {area.left, area.width, size.width, slice.ascans};
}

Scale downwards(const Image& slice, const SliceArea& area, PictureSize size) {
  return {area.top, area.height, size.height, slice.depth};
}

float finite(float sample, float lower, float upper) {
  const float other = sample > 0 ? upper : lower;
  return std::abs(sample) <= std::numeric_limits<float>::max() ? sample : other;
}

// Reads the slice along its memory.
class Sampling {
 public:
  Sampling(const Image& slice, const Scale& columns, const Scale& rows, const PixelRectangle& pixels,
           const std::optional<ValueRange>& range, bool nearest)
      : slice_(slice),
        pixels_(pixels),
        box_columns_(nearest ? 1 : columns.samples_per_pixel()),
        box_rows_(nearest ? 1 : rows.samples_per_pixel()),
        range_(range) {
    for (unsigned i = 0; i < pixels.width; ++i) columns_.push_back(columns.index_of(pixels.left + i));
    for (unsigned i = 0; i < pixels.height; ++i) rows_.push_back(rows.index_of(pixels.top + i));
  }

  Image take() {
    Image result{pixels_.height, pixels_.width, {}, {}};
    result.samples.resize(result.depth * result.ascans);
    if (result.samples.empty()) return result;
    end_ = std::min(rows_.back() + box_rows_, slice_.depth);
    sums_.resize(end_);
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      float* const column = &result.samples[i * result.depth];
      if (i > 0 && columns_[i] == columns_[i - 1]) {
        std::copy_n(column - result.depth, result.depth, column);
      } else {
        sum_columns(columns_[i]);
        fill(column);
      }
    }
    return result;
  }

 private:
  // Of the box's columns, row by row.
  void sum_columns(std::size_t first) {
    std::fill(sums_.begin(), sums_.end(), 0.0F);
    for (std::size_t i = 0; i < box_columns_; ++i) {
      const float* const samples = &slice_.samples[std::min(first + i, slice_.ascans - 1) * slice_.depth];
      if (range_) {
        const auto lower = static_cast<float>(range_->lower), upper = static_cast<float>(range_->upper);
        for (std::size_t z = rows_.front(); z < end_; ++z) sums_[z] += finite(samples[z], lower, upper);
      } else {
        for (std::size_t z = rows_.front(); z < end_; ++z) sums_[z] += samples[z];
      }
    }
  }

  void fill(float* column) const {
    const auto count = static_cast<double>(box_columns_ * box_rows_);
    for (std::size_t i = 0; i < rows_.size(); ++i) {
      double sum = 0;
      for (std::size_t k = 0; k < box_rows_; ++k)
        sum += static_cast<double>(sums_[std::min(rows_[i] + k, slice_.depth - 1)]);
      column[i] = static_cast<float>(sum / count);
    }
  }

  const Image& slice_;
  const PixelRectangle pixels_;
  const std::size_t box_columns_;
  const std::size_t box_rows_;
  const std::optional<ValueRange> range_;
  std::vector<std::size_t> columns_;  // of the slice, by pixel
  std::vector<std::size_t> rows_;
  std::size_t end_ = 0;  // behind the last row that is looked at
  std::vector<float> sums_;
};

// The same part of an image that is stretched over the slice.
SliceArea stretched(const SliceArea& area, const Image& slice, const Image& other) {
  const double x = static_cast<double>(other.ascans) / static_cast<double>(slice.ascans);
  const double y = static_cast<double>(other.depth) / static_cast<double>(slice.depth);
  return {area.left * x, area.top * y, area.width * x, area.height * y};
}

void set_overlay(DisplayRenderingHandle renderer, const SliceScene& scene, const PixelRectangle& pixels) {
  const SliceLayer& layer = scene.overlay->layer;
  const SliceArea area = stretched(scene.area, *scene.base.image, *layer.image);
  set_display_overlay(renderer, sample_area(*layer.image, area, scene.size, pixels, layer.range, true),
                      layer.range, layer.colormap, scene.overlay->threshold);
}

// Each tile has its own samples, and with them its place in the picture.
class SliceRendering {
 public:
  explicit SliceRendering(const SliceScene& scene) : scene_(scene) {
    const PictureSize size = scene.size;
    picture_ = {size, std::vector<std::uint8_t>(std::size_t{size.width} * size.height * 3)};
    for (std::size_t i = 0; i < picture_.pixels.size(); ++i)
      picture_.pixels[i] = static_cast<std::uint8_t>(scene.background >> (16 - 8 * (i % 3)));
  }

  SlicePicture take() {
    const PixelRectangle whole = visible_pixels(*scene_.base.image, scene_.area, scene_.size);
    for (unsigned top = 0; top < whole.height; top += largest_tile) {
      for (unsigned left = 0; left < whole.width; left += largest_tile) {
        draw({whole.left + left, whole.top + top, std::min(largest_tile, whole.width - left),
              std::min(largest_tile, whole.height - top)});
      }
    }
    if (whole.is_empty()) explanation_ = "The slice lies beside the picture. ";
    return {std::move(picture_), shows_ ? std::string() : explanation_};
  }

 private:
  void draw(const PixelRectangle& tile) {
    set_scene(renderer_.handle(), scene_, tile);
    target_.render(tile.width, tile.height, rgba_, [&] { checked(renderDisplay, renderer_.handle()); });
    const Picture drawn = to_picture({tile.width, tile.height}, rgba_);
    for (unsigned row = 0; row < tile.height; ++row) {
      std::copy_n(&drawn.pixels[std::size_t{row} * tile.width * 3], std::size_t{tile.width} * 3,
                  &picture_.pixels[(std::size_t{tile.top + row} * scene_.size.width + tile.left) * 3]);
    }
    explanation_ = explanation_of(explainDisplay, renderer_.handle());
    shows_ = shows_ || explanation_.empty();
  }

  const SliceScene& scene_;
  OffscreenTarget target_;
  const DisplayRenderer renderer_;
  std::vector<std::uint8_t> rgba_;
  Picture picture_;
  std::string explanation_;
  bool shows_ = false;
};

SlicePicture render_opaque(const SliceScene& scene) {
  return SliceRendering(scene).take();
}

}  // namespace

SliceArea whole_area(const Image& slice) {
  return {0, 0, static_cast<double>(slice.ascans), static_cast<double>(slice.depth)};
}

SliceArea area_of(const SliceWindow& window, const Image& slice, PictureSize size) {
  double down = slice.spacing.mm[0], right = slice.spacing.mm[1];
  if (!(down > 0 && right > 0)) down = right = 1;
  const SliceArea whole = whole_area(slice);
  const double pixel =
      std::max(whole.width * right / size.width, whole.height * down / size.height) / window.zoom;
  SliceArea area{0, 0, size.width * pixel / right, size.height * pixel / down};
  area.left = window.centre[0] * whole.width - area.width / 2;
  area.top = window.centre[1] * whole.height - area.height / 2;
  return area;
}

PixelRectangle visible_pixels(const Image& slice, const SliceArea& area, PictureSize size) {
  const auto [left, width] = across(slice, area, size).visible();
  const auto [top, height] = downwards(slice, area, size).visible();
  return {left, top, width, height};
}

Image sample_area(const Image& slice, const SliceArea& area, PictureSize size, const PixelRectangle& pixels,
                  const std::optional<ValueRange>& range, bool nearest) {
  return Sampling(slice, across(slice, area, size), downwards(slice, area, size), pixels, range, nearest)
      .take();
}

void set_scene(DisplayRenderingHandle renderer, const SliceScene& scene, const PixelRectangle& pixels) {
  const SliceLayer& base = scene.base;
  set_display_base(renderer, sample_area(*base.image, scene.area, scene.size, pixels, base.range),
                   base.range);
  set_display_colors(renderer, base.colormap, scene.background);
  if (scene.overlay) set_overlay(renderer, scene, pixels);
  checked(setDisplayNumberOverlays, renderer, 0, int{scene.overlay.has_value()});
}

std::optional<std::array<double, 2>> pixel_mm(const SliceScene& scene) {
  const auto [down, right, ignored] = scene.base.image->spacing.mm;
  if (!(down > 0 && right > 0)) return std::nullopt;
  return std::array{right * scene.area.width / scene.size.width,
                    down * scene.area.height / scene.size.height};
}

SlicePicture render_slice(const SliceScene& scene) {
  if (!scene.transparent) return render_opaque(scene);
  SliceScene on_paper = scene;
  on_paper.background = 0;
  SlicePicture result = render_opaque(on_paper);
  on_paper.background = 0xFFFFFF;
  result.picture = without_background(result.picture, render_opaque(on_paper).picture);
  return result;
}

}  // namespace oct::app
