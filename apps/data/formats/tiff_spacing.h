// Distances between pixels as programs write them into the description of a TIFF image.
#pragma once

#include <string_view>

#include "data/formats/frames.h"

namespace oct::app {

// The description is of lines that ImageJ wrote, or of those who write likewise.
bool is_imagej(std::string_view description);

// The value behind "name=" at the start of a line; empty: there is none.
std::string_view imagej_value(std::string_view description, std::string_view name);

// resolution: columns and rows per unit, of other tags. Those without a description tell the dots per inch of a
// screen and not how large the object is; they do not count.
FileSpacing tiff_spacing(std::string_view description, double columns_per_unit, double rows_per_unit);

}  // namespace oct::app
