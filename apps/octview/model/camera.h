// Gestures that change how a volume is looked at, and where its points appear. Arithmetic alone.
#pragma once

#include <array>
#include <optional>

#include "data/picture.h"
#include "scene/volume_view.h"

namespace oct::app {

// In pixels from the upper left corner of the picture, or as far as a mouse moved: to the right, downwards.
using PixelPoint = std::array<double, 2>;

// Depth, A-scans, B-scans in parts of the box, 0 to 1.
using BoxPoint = std::array<double, 3>;

using BoxExtent = std::array<float, 3>;  // depth, A-scans, B-scans in one unit

// Upright at any time: a drag across the picture's width turns by 180 degrees, upwards and downwards no farther than to
// the end of the box.
void turn(VolumeView& view, const PixelPoint& drag, PictureSize size);

// What lies in the plane of the box's centre follows the mouse.
void pan(VolumeView& view, const PixelPoint& drag, PictureSize size);

// Shows so many times as much, as far as there are fields of view. The point of the plane of the box's centre that lies
// under the cursor stays there.
void zoom_at(VolumeView& view, const PixelPoint& cursor, double factor, PictureSize size);

// As a new view: from above, with the whole box and its labels in sight, however it is turned.
void reset_camera(VolumeView& view, PictureSize size);

// Moves and zooms so that the box, with its labels where there are any, fills the picture as it is turned now.
void fit_box(VolumeView& view, const BoxExtent& extent, PictureSize size);

// None: it lies behind the viewer.
std::optional<PixelPoint> pixel_of(const VolumeView& view, const BoxExtent& extent, const BoxPoint& point,
                                   PictureSize size);

}  // namespace oct::app
