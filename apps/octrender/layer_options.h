// Options of data that are drawn with colours of their own beside the image or the volume.
#pragma once

#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "octrender/option_values.h"

namespace oct::app {

// `option` names the file, or asks for the data: the others need it. what: "the overlay".
void add_layer_colormap_option(CLI::App& verb, CLI::Option* option, const std::string& what,
                               std::string& colormap);

// Colours of a layer as the command line names them.
struct LayerColorOptions {
  std::optional<NumberPair> range;
  std::string colormap;
  bool reverse = false;
};

void add_layer_color_options(CLI::App& verb, CLI::Option* option, const std::string& what,
                             LayerColorOptions& options);

// The colours of the map, without an opacity of their own unless the table is the user's.
Colormap layer_colormap(const LayerColorOptions& options);

}  // namespace oct::app
