// Options of the verbs that draw volumes, and what follows from them.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include <CLI/CLI.hpp>

#include "data/colormap.h"
#include "octrender/option_values.h"
#include "scene/volume_view.h"

namespace oct::app {

struct VolumeOptions {
  std::string mode = "composite";
  std::string size = "1024x768";
  std::vector<double> angles{25, -35};
  std::vector<double> translation{0, 0, 0};
  std::optional<double> zoom;
  bool orthographic = false;
  int slices = 256;
  std::vector<double> light;
  bool jitter = false;
  double opacity_length = 0;
  std::optional<NumberPair> range;
  std::optional<NumberPair> percentiles;
  std::string colormap;
  bool reverse = false;
  OpacityRule opacity;
  std::string opacity_points;
  std::vector<std::string> background{"000066", "000019"};
  std::string foreground = "FFFFFF";
  std::optional<double> clip;
  bool clip_open = false;
  bool clip_ghost = false;
  std::vector<std::string> sections;
  bool no_edges = false;
  bool no_labels = false;
  bool box = false;
};

void add_view_options(CLI::App& verb, VolumeOptions& options);

// default_colors: continues the help of --colormap.
void add_color_options(CLI::App& verb, VolumeOptions& options, const std::string& default_colors);

void add_cut_options(CLI::App& verb, VolumeOptions& options);
void add_box_options(CLI::App& verb, VolumeOptions& options);

// Throws a CommandLineError where a value makes no sense.
VolumeView view_of(const VolumeOptions& options);

// The map of the options, or this one where they name none; with the opacity that the look wants.
// Of an automatic range: what the command line says, else what suits the look.
Shares shares_of(const VolumeOptions& options, VolumeLook look);

Colormap volume_colormap(const VolumeOptions& options, VolumeLook look, const std::string& default_name);

}  // namespace oct::app
