#include "hosting/loop/render_trace.h"

namespace oct {

const char* fixedRenderTraceFile() {
  return "C:\\tmp\\render_calls.txt";
}

}  // namespace oct
