#include "octrender/output/figure_options.h"

#include "octrender/option_values.h"

namespace oct::app {

void add_figure_options(CLI::App& verb, FigureOptions& options, const std::string& scale_bar) {
  auto* figure = verb.add_flag("--figure", options.figure,
                               "Put the picture on paper with a colour bar, and a scale\nbar " + scale_bar);
  verb.add_option("--unit", options.unit,
                  "Unit of the samples, beside the colour bar (default: dB\nwith --db)")
      ->type_name("TEXT")
      ->needs(figure);
  add_paper_options(verb, options);
  verb.get_option("--text-size")->needs(figure);
  verb.get_option("--paper")->needs(figure);
  verb.add_flag("--transparent", options.transparent,
                "Alpha in place of background and paper; text is for\npaper of --paper");
}

void add_paper_options(CLI::App& verb, FigureOptions& options) {
  verb.add_option("--text-size", options.text_size,
                  "Height of a line of text in pixels (default: by the\npicture's size)")
      ->type_name("PIXELS")
      ->check(CLI::Range(4.0, 1000.0).description(""));
  verb.add_option("--paper", options.paper, "Colour of the paper; text on it is black or white")
      ->type_name("RRGGBB")
      ->capture_default_str();
}

FigureStyle style_of(const FigureOptions& options) {
  return {options.text_size, parse_color("--paper", options.paper), options.transparent};
}

ColorBar color_bar_of(const FigureOptions& options, const Colormap& colors, const ValueRange& range,
                      bool decibels) {
  return {colors, range, options.unit.value_or(decibels ? "dB" : "")};
}

}  // namespace oct::app
