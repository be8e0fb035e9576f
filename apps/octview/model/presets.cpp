#include "octview/model/presets.h"

#include <algorithm>

namespace oct::app {
namespace {

constexpr double whole_box = 30;  // shown without perspective, with its labels

}  // namespace

std::span<const Preset> presets() {
  using enum VolumeLook;
  static const std::array table{
      Preset{"Skin",
             "surface and layers of scattering tissue",
             composite,
             {0.6, 0.998},
             {0.3, 0, {}},
             "inferno",
             {0.3, 0.7, 0.2},
             false},
      Preset{"Retina",
             "thin layers, through which others show",
             composite,
             {0.7, 0.999},
             {0.4, 0.2, {}},
             "viridis",
             {0.3, 0.7, 0.2},
             false},
      Preset{"Vessel",
             "the wall of a tube, from inside or cut open",
             composite,
             {0.5, 0.995},
             {0.6, 0.1, {}},
             "magma",
             {0.3, 0.7, 0.1},
             false},
      Preset{"Needle",
             "few very bright things in something faint",
             maximum,
             {0.5, 0.9999},
             {0.9, 0, {{0, 0}, {0.5, 0}, {1, 1}}},
             "gray",
             {0, 0, 0},
             false},
      Preset{"En face",
             "the mean of all depths, from above",
             mean,
             {0.01, 0.98},
             {0.25, 0, {}},
             "gray",
             {0, 0, 0},
             true},
  };
  return table;
}

void apply_preset(const Preset& preset, ViewState& state) {
  state.volume.look = preset.look;
  state.volume.lighting = preset.lighting;
  if (preset.from_above) {
    state.volume.angles = {90, 0};
    state.volume.perspective = false;
    state.volume.zoom = whole_box;
  }
  state.base.shares = preset.shares;
  state.base.opacity = preset.opacity;
  state.base.colormap = preset.colormap;
  state.base.reverse = false;
}

bool shows_preset(const Preset& preset, const ViewState& state) {
  ViewState applied = state;
  apply_preset(preset, applied);
  return state.volume == applied.volume && state.base == applied.base;
}

}  // namespace oct::app
