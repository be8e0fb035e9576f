#include "hosting/loop/render_trace.h"

#include <mutex>

#include "core/immortal.h"

namespace oct {
namespace {

class RenderTrace {
 public:
  void write(std::int32_t request) {
    const std::lock_guard lock(mutex_);
    if (!tried_) file_ = open_render_trace(path_);
    tried_ = true;
    if (!file_) return;
    std::fprintf(file_.get(), "%d\n", request);
    std::fflush(file_.get());
  }

  std::filesystem::path path() {
    const std::lock_guard lock(mutex_);
    return path_;
  }

  void set_path(const std::filesystem::path& path) {
    const std::lock_guard lock(mutex_);
    file_.reset();
    tried_ = false;
    path_ = path;
  }

  void close() {
    const std::unique_lock lock(mutex_, std::try_to_lock);
    if (!lock) return;
    file_.reset();
    tried_ = true;
    path_ = std::filesystem::path();
  }

 private:
  std::mutex mutex_;
  std::filesystem::path path_ = fixed_render_trace_file();
  TraceFile file_;
  bool tried_ = false;
};

RenderTrace& render_trace() {
  return immortal<RenderTrace>();
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
