// Units of lengths, as files write them.
#pragma once

#include <optional>
#include <string_view>

namespace oct::app {

// Millimetres of one such unit; the name in UTF-8 or Latin-1, in any case.
std::optional<double> millimetres_of(std::string_view unit);

// A distance between samples in millimetres; 0 for what is none, of an atom or of a room.
double distance_mm(double distance, double unit_mm);

}  // namespace oct::app
