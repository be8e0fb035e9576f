#include "hosting/loop/render_trace.h"

namespace oct {

const char* fixed_render_trace_file() {
  return "C:\\tmp\\render_calls.txt";
}

// Links need rights here that an ordinary user does not have.
TraceFile open_render_trace(const std::filesystem::path& path) {
  return TraceFile(_wfopen(path.c_str(), L"w"));
}

}  // namespace oct
