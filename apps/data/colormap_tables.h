// The colour maps that come with the program, apart from gray.
#pragma once

#include <span>
#include <string_view>

namespace oct::app {

struct ColormapTable {
  std::string_view name;
  std::string_view colors;  // six hexadecimal digits per colour
};

std::span<const ColormapTable> colormap_tables();

}  // namespace oct::app
