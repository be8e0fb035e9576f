#include "hosting/loop/render_trace.h"

namespace oct {

const char* fixedRenderTraceFile() {
  return "/tmp/render_calls.txt";
}

}  // namespace oct
