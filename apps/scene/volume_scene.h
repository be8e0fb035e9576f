// Everything that makes the picture of a volume, ready to be drawn.
#pragma once

#include <array>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "data/colormap.h"
#include "data/picture.h"
#include "data/samples.h"
#include "data/volume.h"
#include "scene/offscreen_picture.h"
#include "scene/volume_view.h"

namespace oct::app {

// A volume with its colours. Every voxel is finite.
struct VolumeLayer {
  VolumeData data;
  ValueRange range;
  Colormap colormap;
};

struct HeightMap {
  LateralMap depths;  // in samples of the volume's file
  ValueRange range;
  Colormap colormap;
};

// Colours a composite by a quantity that has one value per A-scan.
struct SecondaryColoring {
  LateralMap map;  // of any size
  ValueRange range;
  Colormap colormap;
};

struct VolumeScene : VolumeView {
  VolumeLayer base;
  std::optional<VolumeLayer> overlay;
  std::optional<HeightMap> surface;
  std::optional<SecondaryColoring> secondary;
  bool show_volume = true;
  bool transparent = false;  // alpha in place of the background; the picture then has four channels
  std::array<float, 3> extent{1, 1, 1};  // depth, A-scans, B-scans
};

// Everything but the angles, which may change from picture to picture.
void set_scene(OfflineRenderingHandle offline, VolumeRendererHandle renderer, const VolumeScene& scene);

// Of a pixel of the picture, the same everywhere in it; none with perspective. Counts extents as millimetres.
std::optional<double> pixel_mm(const VolumeScene& scene);

// Draws the scene once, or as often as `count` says, turned further about the depth axis each time so that
// the last picture is followed by the first. Each picture is handed over as it is finished. Returns why the last one shows
// nothing; empty when it shows something.
std::string render_volume(const VolumeScene& scene, unsigned count,
                          const std::function<void(unsigned, const Picture&)>& take,
                          unsigned tile = largest_tile);

}  // namespace oct::app
