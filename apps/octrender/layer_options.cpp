#include "octrender/layer_options.h"

#include <algorithm>

namespace oct::app {

void add_layer_colormap_option(CLI::App& verb, CLI::Option* option, const std::string& what,
                               std::string& colormap) {
  verb.add_option(option->get_name() + "-colormap", colormap, "As --colormap, for " + what)
      ->type_name("MAP")
      ->capture_default_str()
      ->needs(option);
}

void add_layer_color_options(CLI::App& verb, CLI::Option* option, const std::string& what,
                             LayerColorOptions& options) {
  verb.add_option(option->get_name() + "-range", options.range, "As --range, for " + what)
      ->type_name("LO HI | auto")
      ->needs(option);
  add_layer_colormap_option(verb, option, what, options.colormap);
  verb.add_flag(option->get_name() + "-reverse", options.reverse, "As --reverse, for " + what)->needs(option);
}

Colormap layer_colormap(const LayerColorOptions& options) {
  Colormap colors = load_colormap(options.colormap);
  if (options.reverse) std::ranges::reverse(colors);
  return colors;
}

}  // namespace oct::app
