#include "octrender/layer_options.h"

namespace oct::app {

void add_layer_colormap_option(CLI::App& verb, CLI::Option* option, const std::string& what,
                               std::string& colormap) {
  verb.add_option(option->get_name() + "-colormap", colormap, "As --colormap, for " + what)
      ->type_name("MAP")
      ->capture_default_str()
      ->needs(option);
}

void add_layer_color_options(CLI::App& verb, CLI::Option* option, const std::string& what,
                             std::optional<NumberPair>& range, std::string& colormap) {
  verb.add_option(option->get_name() + "-range", range, "As --range, for " + what)
      ->type_name("LO HI | auto")
      ->needs(option);
  add_layer_colormap_option(verb, option, what, colormap);
}

}  // namespace oct::app
