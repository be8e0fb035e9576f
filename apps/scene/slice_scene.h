// Everything that makes the picture of a slice, ready to be drawn.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include "data/colormap.h"
#include "data/image.h"
#include "data/picture.h"
#include "data/samples.h"
#include "oct_rendering/oct_rendering.h"
#include "scene/slice_window.h"

namespace oct::app {

struct SliceLayer {
  std::shared_ptr<const Image>
      image;  // NaN and minus infinity are drawn in the range's lower colour, infinity in the upper
  ValueRange range;
  Colormap colormap;
};

// Stretched over the slice, which may have other sizes.
struct SliceOverlay {
  SliceLayer layer;
  std::optional<double>
      threshold;  // value of the slice below which the overlay is not drawn; none: drawn everywhere
};

struct SliceScene {
  SliceLayer base;
  std::optional<SliceOverlay> overlay;
  SliceArea area;
  PictureSize size;
  std::uint32_t background = 0;  // 0xRRGGBB; what shows beside the slice and through transparent colours
  bool transparent = false;      // pictures have alpha in place of the background
};

// Pixels from the top left.
struct PixelRectangle {
  unsigned left = 0;
  unsigned top = 0;
  unsigned width = 0;
  unsigned height = 0;

  bool is_empty() const { return width == 0 || height == 0; }
  bool operator==(const PixelRectangle&) const = default;
};

// The pixels whose centres lie on the slice.
PixelRectangle visible_pixels(const Image& slice, const SliceArea& area, PictureSize size);

// One sample for each of these pixels of a picture of this area. A pixel shows the mean of as many whole samples as it
// covers, at least one, from the one below its centre on, and where `nearest` that one only. What lies beyond the slice's
// edge is as the edge. Samples that are not finite become an end of the range; without one they stay, and make means so.
Image sample_area(const Image& slice, const SliceArea& area, PictureSize size, const PixelRectangle& pixels,
                  const std::optional<ValueRange>& range, bool nearest = false);

// Hands over these pixels of the scene, for a viewport of their size.
void set_scene(DisplayRenderingHandle renderer, const SliceScene& scene, const PixelRectangle& pixels);

// Of a pixel, to the right and downwards; none where the spacing is not known.
std::optional<std::array<double, 2>> pixel_mm(const SliceScene& scene);

struct SlicePicture {
  Picture picture;
  std::string explanation;  // why it shows nothing; empty when it shows something
};
SlicePicture render_slice(const SliceScene& scene);

}  // namespace oct::app
