#include "hosting/loop/render_trace.h"

#include <fstream>
#include <mutex>

namespace oct {
namespace {

class RenderTrace {
 public:
  void write(std::int32_t request) {
    const std::lock_guard lock(mutex_);
    if (file_.is_open()) file_ << request << std::endl;
  }

 private:
  std::mutex mutex_;
  std::ofstream file_{renderTraceFile(),
                      std::ios::trunc};  // shared for reading and writing on either platform
};

}  // namespace

void traceRenderCall(std::int32_t request) {
  static RenderTrace trace;
  trace.write(request);
}

}  // namespace oct
