// Trace of the frames that clients ask for, one id per line, in a text file at a fixed place.
#pragma once

#include <cstdint>
#include <filesystem>

namespace oct {

// Writes the line and flushes it, on the calling client's thread. The first call of the process opens the
// file; where that fails there is no trace.
void trace_render_call(std::int32_t request) noexcept;

// Where the trace goes: the platform's fixed place, unless a test has named another. The next call opens that
// one; an empty path ends the trace.
std::filesystem::path render_trace_file();
void set_render_trace_file(const std::filesystem::path& file);

const char* fixed_render_trace_file();  // one source per platform

}  // namespace oct
