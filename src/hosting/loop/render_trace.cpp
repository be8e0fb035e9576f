#include "hosting/loop/render_trace.h"

#include <exception>
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

  void set_path(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    stream_.close();
    stream_.clear();
    tried_ = false;
    path_ = path;
  }

 private:
  std::mutex mutex_;
  std::filesystem::path path_ = fixed_render_trace_file();
  std::ofstream stream_;
  bool tried_ = false;
};

RenderTrace& render_trace() {
  static RenderTrace instance;
  return instance;
}

}  // namespace

void trace_render_call(std::int32_t request) noexcept {
  try {
    render_trace().write(request);
  } catch (const std::exception&) {
    // A lost line is better than a lost frame.
  }
}

std::filesystem::path render_trace_file() {
  return render_trace().path();
}

void set_render_trace_file(const std::filesystem::path& file) {
  render_trace().set_path(file);
}

}  // namespace oct
