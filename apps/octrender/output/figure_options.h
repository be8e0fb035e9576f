// Options of pictures that become figures.
#pragma once

#include <optional>
#include <string>

#include <CLI/CLI.hpp>

#include "data/figure/figure.h"

namespace oct::app {

struct FigureOptions {
  bool figure = false;
  std::optional<std::string> unit;
  std::optional<double> text_size;
  std::string paper = "FFFFFF";
  bool transparent = false;
};

// scale_bar: when there is one, continues the help of --figure.
void add_figure_options(CLI::App& verb, FigureOptions& options, const std::string& scale_bar);

// Those of the paper and its text alone.
void add_paper_options(CLI::App& verb, FigureOptions& options);

// Throws a CommandLineError where a value makes no sense.
FigureStyle style_of(const FigureOptions& options);

// The unit that was given, else that of decibels where samples are.
ColorBar color_bar_of(const FigureOptions& options, const Colormap& colors, const ValueRange& range,
                      bool decibels);

}  // namespace oct::app
