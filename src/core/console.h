// Whole lines on the standard streams of the process. A line is written with one call and flushed, so that
// lines of several threads do not mix.
#pragma once

#include <string_view>

namespace oct {

void write_output(std::string_view line);
void write_error(std::string_view line);

}  // namespace oct
