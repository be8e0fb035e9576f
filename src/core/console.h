// Whole lines on the standard streams of the process; none on the standard output of one that wants the library to be
// quiet. A line is flushed and does not mix with those of other
// threads. No memory is needed: these lines are what remains when there is none.
#pragma once

#include <string_view>

namespace oct {

bool is_quiet() noexcept;  // decided once, when the library is loaded

void write_output(std::string_view line) noexcept;
void write_error(std::string_view line) noexcept;
void write_error(std::string_view begin, std::string_view end) noexcept;  // one line

}  // namespace oct
