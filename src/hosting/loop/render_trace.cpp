#include "hosting/loop/render_trace.h"

#include <fstream>
#include <mutex>

namespace oct {
namespace {

class RenderTrace {
 public:
  void write(std::int32_t request) {
    const std::lock_guard lock(mutex_);
    if (!tried_) stream_.open(path_, std::ios::trunc);  // shared for reading and writing on either platform
    tried_ = true;
    if (stream_.is_open()) stream_ << request << std::endl;
  }

  std::filesystem::path path() {
    const std::lock_guard lock(mutex_);
    return path_;
  }

  void setPath(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    stream_.close();
    stream_.clear();
    tried_ = false;
    path_ = path;
  }

 private:
  std::mutex mutex_;
  std::filesystem::path path_ = fixedRenderTraceFile();
  std::ofstream stream_;
  bool tried_ = false;
};

RenderTrace& renderTrace() {
  static RenderTrace instance;
  return instance;
}

}  // namespace

void traceRenderCall(std::int32_t request) {
  renderTrace().write(request);
}

std::filesystem::path renderTraceFile() {
  return renderTrace().path();
}

void setRenderTraceFile(const std::filesystem::path& file) {
  renderTrace().setPath(file);
}

}  // namespace oct
