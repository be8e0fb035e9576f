// Everything that makes the picture of a volume, ready to be drawn.
#pragma once

#include <array>
#include <cstddef>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "client/renderers.h"
#include "data/colormap.h"
#include "data/picture.h"
#include "data/progress_function.h"
#include "data/samples.h"
#include "data/volume.h"
#include "scene/offscreen_picture.h"
#include "scene/volume_view.h"

namespace oct::app {

// A volume with its colours. Every voxel is finite. Data is shared with whoever loaded it and told apart by its place in
// memory: while a scene has it, it does not change.
struct VolumeLayer {
  std::shared_ptr<const VolumeData> data;
  ValueRange range;
  Colormap colormap;

  bool operator==(const VolumeLayer&) const = default;
};

struct HeightMap {
  // In samples of the volume's file, of which each A-scan has one; one row per B-scan.
  std::shared_ptr<const std::vector<float>> depths;
  ValueRange range;
  Colormap colormap;

  bool operator==(const HeightMap&) const = default;
};

// Colours a composite by a quantity that has one value per A-scan.
struct SecondaryColoring {
  std::shared_ptr<const LateralMap> map;  // of any size
  ValueRange range;
  Colormap colormap;

  bool operator==(const SecondaryColoring&) const = default;
};

struct VolumeScene : VolumeView {
  VolumeLayer base;
  std::optional<VolumeLayer> overlay;
  std::optional<HeightMap> surface;
  std::optional<SecondaryColoring> secondary;
  bool show_volume = true;
  bool show_overlay = true;
  bool show_surface = true;
  bool transparent = false;  // alpha in place of the background; the picture then has four channels
  std::array<float, 3> extent{1, 1, 1};  // depth, A-scans, B-scans

  bool operator==(const VolumeScene&) const = default;
};

// Draws scenes with a renderer of its own, in the context that is current when it is made, which has to outlive it.
class VolumeDrawing {
 public:
  // Of this scene are the next frames. What it shares with the scene before stays with the driver; what is new is handed
  // over by upload(). Throws a RenderingError; the next scene then brings everything anew.
  void set(const VolumeScene& scene);

  // Hands over data of so many bytes at most, or a B-scan. False when all is there.
  bool upload(std::size_t bytes = std::numeric_limits<std::size_t>::max());
  // How much of the base volume is there, 0 to 1.
  double uploaded() const;

  // One frame into the current framebuffer and viewport, of what is there.
  void draw();

  VolumeRendererHandle renderer() const { return rendering_.renderer(); }

 private:
  void set_base(const VolumeScene* before);
  void set_overlay(const VolumeScene* before);
  void set_surface(const VolumeScene* before);
  void set_secondary(const VolumeScene* before);

  OfflineRendering rendering_;
  VolumeScene scene_;
  bool is_set_ = false;           // as scene_ says
  std::size_t next_bscan_ = 0;    // of the base volume, to be handed over
  bool overlay_awaited_ = false;  // to be handed over after it
};

// Of a pixel of the picture, the same everywhere in it; none with perspective. Counts extents as millimetres.
std::optional<double> pixel_mm(const VolumeScene& scene);

// Draws the scene once, or as often as `count` says, turned further about the depth axis each time so that
// the last picture is followed by the first. Each picture is handed over as it is finished. Returns why the last one shows
// nothing; empty when it shows something. What the progress function throws passes through.
std::string render_volume(const VolumeScene& scene, unsigned count,
                          const std::function<void(unsigned, const Picture&)>& take,
                          unsigned tile = largest_tile, const ProgressFunction& progress = no_progress);

}  // namespace oct::app
