// Trace of the frames that clients ask for, one id per line, in a text file at a fixed place.
#pragma once

#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <memory>

namespace oct {

// Writes the line and flushes it, on the calling client's thread. The first call of the process opens the
// file; where that fails there is no trace.
void trace_render_call(std::int32_t request) noexcept;

// Where the trace goes: the platform's fixed place, unless a test has named another. The next call opens that
// one; an empty path ends the trace.
std::filesystem::path render_trace_file();
void set_render_trace_file(const std::filesystem::path& file);

// One source per platform.

const char* fixed_render_trace_file();

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};
using TraceFile = std::unique_ptr<std::FILE, CloseFile>;

// The file, emptied, and shared for reading and writing. Null where it cannot be opened, and where somebody else
// has put a file or a link of his own: on a machine of several users everybody may write to the fixed place.
TraceFile open_render_trace(const std::filesystem::path& path);

}  // namespace oct
