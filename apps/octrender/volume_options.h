// Options of the verbs that draw volumes, and what follows from them.
#pragma once

#include <CLI/CLI.hpp>

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "colormap.h"
#include "option_values.h"
#include "samples.h"
#include "volume_view.h"

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

// Throws a command line failure where a value makes no sense.
VolumeView viewOf(const VolumeOptions& options);

// The map of the options, or this one where they name none; with the opacity that the look wants.
Colormap volumeColormap(const VolumeOptions& options, VolumeLook look, const std::string& defaultName);

// True for a table of the user's, whose alpha counts.
bool isOwnFile(const std::string& nameOrFile);

// Opacity that rises with the square of the value.
void addOpacityRamp(Colormap& colors, double opacity);

// Parts of the voxels that lie below the two ends of an automatic range.
struct Shares {
  double lower;
  double upper;
};
Shares sharesOf(VolumeLook look);

// What was given, or a range by percentiles of the finite voxels. Without any, fails with the name of where
// they came from.
ValueRange rangeOf(const std::string& origin, const std::vector<float>& voxels,
                   const std::optional<ValueRange>& given, Shares shares);

// Throws a command line failure unless the name ends in .png.
std::filesystem::path pictureFile(const std::string& output);

// "OUT-007.png" for "OUT.png" and 7.
std::filesystem::path numbered(const std::filesystem::path& output, unsigned number);

}  // namespace oct::app
