// Everything that a session keeps: what is shown, and how. No data, no OpenGL.
#pragma once

#include <array>
#include <optional>
#include <string>
#include <vector>

#include "data/data_file.h"
#include "data/opacity.h"
#include "data/samples.h"
#include "data/slices.h"
#include "octview/model/measurements.h"
#include "scene/slice_window.h"
#include "scene/volume_view.h"

namespace oct::app {

// The files that were opened. Empty paths: none.
struct SessionFiles {
  DataFile base;
  DataFile overlay;
  DataFile surface;    // height map: depths in samples, one row per B-scan
  DataFile secondary;  // map over the lateral axes that colours composites
  bool decibels = false;
  std::optional<std::array<double, 3>> extent;  // depth, A-scans, B-scans in millimetres, by the user
};

struct LayerLook {
  std::string colormap = "gray";
  bool reverse = false;
  std::optional<Shares> shares;  // the range follows the data; none: it is the user's
  ValueRange range;
  OpacityRule opacity;
  bool visible = true;

  bool operator==(const LayerLook&) const = default;
};

enum class Pane { bscan, enface, third, volume };
constexpr std::array<const char*, 4> pane_names{"B-scan", "En face", "Section", "Volume"};

struct ViewState {
  VolumeView volume;  // without the size, which is the pane's
  LayerLook base;
  LayerLook overlay;
  LayerLook surface;
  LayerLook secondary;
  std::array<double, 3>
      cursor{};  // the voxel of the crosshair: depth, A-scan, B-scan; all slices go through it
  EnFace enface;
  double below_surface = 0;            // samples; where en-face sections follow it
  std::array<SliceWindow, 3> windows;  // of the B-scan, en face, and the third section
  std::optional<Pane> large;           // the one that fills the window
  bool crosshair = true;
  std::vector<Measurement> measurements;
};

}  // namespace oct::app
