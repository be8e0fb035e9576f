// The verbs of the program. Each function adds one to the command line; a verb that runs reports by throwing. texts: those
// of the pictures that it writes.
#pragma once

#include <CLI/CLI.hpp>

#include "data/formats/png_writer.h"

namespace oct::app {

void add_bscan_verb(CLI::App& program, const PngTexts& texts);
void add_info_verb(CLI::App& program);
void add_live_verb(CLI::App& program, const PngTexts& texts);
void add_panels_verb(CLI::App& program, const PngTexts& texts);
void add_surface_verb(CLI::App& program, const PngTexts& texts);
void add_slice_verb(CLI::App& program, const PngTexts& texts);
void add_volume_verb(CLI::App& program, const PngTexts& texts);

}  // namespace oct::app
