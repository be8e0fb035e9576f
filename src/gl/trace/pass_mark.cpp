#include "gl/trace/pass_mark.h"

#include <exception>
#include <string>
#include <utility>

#include "gl/context/current_context.h"
#include "gl/context/opengl_loader.h"
#include "gl/trace/gpu_track.h"

namespace oct::gl {

void PassMark::watch(std::string_view name, std::string_view detail) noexcept {
  try {
    if (in_timing_call() || !is_loaded_for_current_driver()) return;
    const std::string whole = std::string(name).append(detail);
    group_.emplace(whole);
    trace_ = current_trace();
    if (trace_ == 0) return;
    context_ = current_context();
    auto track = current_gpu_track();
    if (track && track->begin(trace_, whole)) track_ = std::move(track);
  } catch (const std::exception&) {
    // A pass that is not seen is better than one that is not drawn.
  }
}

PassMark::~PassMark() {
  if (!track_) return;
  try {
    track_->end(trace_, is_context_current() && current_context() == context_);
  } catch (const std::exception&) {
  }
}

}  // namespace oct::gl
