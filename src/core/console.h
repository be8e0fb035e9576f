// Whole lines on the standard streams of the process. A line is written with one call and flushed, so that
// lines of several threads do not mix.
#pragma once

#include <string_view>

namespace oct {

void writeOutput(std::string_view line);
void writeError(std::string_view line);

}  // namespace oct
