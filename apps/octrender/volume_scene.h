// Everything that makes the picture of a volume, ready to be drawn.
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <vector>

#include "colormap.h"
#include "picture.h"
#include "samples.h"
#include "volume_data.h"

namespace oct::app {

enum class VolumeLook { Composite, Maximum, Mean, Sections };

// A volume with its colours. Every voxel is finite.
struct VolumeLayer {
  VolumeData data;
  ValueRange range;
  Colormap colormap;
};

struct HeightMap {
  std::vector<float> depths;  // in samples, one row per B-scan
  ValueRange range;
  Colormap colormap;
};

// Colours a composite by a quantity that has one value per A-scan.
struct SecondaryColoring {
  LateralMap map;  // of any size
  ValueRange range;
  Colormap colormap;
};

struct ClipSetting {
  double value = 0.5;
  bool open = false;
  bool ghost = false;  // shows where the part that is cut away was
};

struct VolumeScene {
  VolumeLayer base;
  std::optional<VolumeLayer> overlay;
  std::optional<HeightMap> surface;
  std::optional<SecondaryColoring> secondary;
  bool showVolume = true;
  VolumeLook look = VolumeLook::Composite;
  PictureSize size;
  std::array<float, 3> extent{1, 1, 1};  // depth, A-scans, B-scans
  std::array<double, 2> angles{};        // degrees, about the horizontal axis and the depth axis
  double zoom = 40;
  bool perspective = true;
  int slices = 256;
  std::optional<ClipSetting> clip;
  std::array<std::optional<float>, 3> sections{0.5f, 0.5f,
                                               0.5f};  // across A-scans, depth, B-scans; none: hidden
  bool edges = true;
  bool scaleMarks = true;
  bool box = false;
  std::uint32_t backgroundBottom = 0x000066;  // 0xRRGGBB
  std::uint32_t backgroundTop = 0x000019;
  std::uint32_t foreground = 0xFFFFFF;
};

// Draws the scene once, or as often as `count` says, turned further about the depth axis each time so that
// the last picture is followed by the first. Each picture is handed over as it is finished.
void renderVolume(const VolumeScene& scene, unsigned count,
                  const std::function<void(unsigned, const Picture&)>& take);

}  // namespace oct::app
