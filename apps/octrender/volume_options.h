// Options of the verbs that draw volumes, and what follows from them.
#pragma once

#include <CLI/CLI.hpp>

#include <optional>
#include <string>
#include <vector>

#include "data/colormap.h"
#include "octrender/option_values.h"
#include "scene/volume_view.h"

namespace oct::app {

struct VolumeOptions {
  std::string mode = "composite";
  std::string size = "1024x768";
  std::vector<double> angles{25, -35};
  std::optional<double> zoom;
  bool orthographic = false;
  int slices = 256;
  std::optional<NumberPair> range;
  std::string colormap;
  bool reverse = false;
  double opacity = 0.25;
  std::vector<std::string> background{"000066", "000019"};
  std::string foreground = "FFFFFF";
  std::optional<double> clip;
  bool clipOpen = false;
  bool clipGhost = false;
  std::vector<std::string> sections;
  bool noEdges = false;
  bool noLabels = false;
  bool box = false;
};

void addViewOptions(CLI::App& verb, VolumeOptions& options);

// defaultColors: continues the help of --colormap.
void addColorOptions(CLI::App& verb, VolumeOptions& options, const std::string& defaultColors);

void addCutOptions(CLI::App& verb, VolumeOptions& options);
void addBoxOptions(CLI::App& verb, VolumeOptions& options);

// Throws a CommandLineError where a value makes no sense.
VolumeView viewOf(const VolumeOptions& options);

// The map of the options, or this one where they name none; with the opacity that the look wants.
Colormap volumeColormap(const VolumeOptions& options, VolumeLook look, const std::string& defaultName);

}  // namespace oct::app
