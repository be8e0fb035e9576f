// Looks that suit a kind of data.
#pragma once

#include <array>
#include <span>

#include "octview/model/view_state.h"

namespace oct::app {

// What a preset carries, and all that it changes.
struct Preset {
  const char* name;
  const char* purpose;  // for people, in one line
  VolumeLook look;
  Shares shares;  // the rule of the range
  OpacityRule opacity;
  const char* colormap;
  std::array<double, 3> lighting;
  bool from_above;  // and without perspective, so that each place lies over its depths
};

std::span<const Preset> presets();

// The range follows the data from then on; who has the data puts it there.
void apply_preset(const Preset& preset, ViewState& state);

// True where the state is as the preset leaves it.
bool shows_preset(const Preset& preset, const ViewState& state);

}  // namespace oct::app
