#include "hosting/loop/render_trace.h"

namespace oct {

const char* fixed_render_trace_file() {
  return "C:\\tmp\\render_calls.txt";
}

}  // namespace oct
