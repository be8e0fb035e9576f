// A phase that gives commands to OpenGL, for traces and debuggers.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string_view>

#include "core/timing_mark.h"
#include "core/trace/trace_file.h"
#include "gl/trace/debugging.h"

namespace oct::gl {

class GpuTrack;

// A TimingMark that also measures when the GPU came to its commands, while a trace is written, and makes a group of them
// for debuggers. Begins and ends where the same context is current; without one it is a TimingMark.
class PassMark {
 public:
  explicit PassMark(std::string_view name, std::string_view detail = {}) : mark_(name, detail) {
    if (current_trace() != 0 || debugging()) watch(name, detail);
  }
  ~PassMark();
  PassMark(const PassMark&) = delete;
  PassMark& operator=(const PassMark&) = delete;

 private:
  void watch(std::string_view name, std::string_view detail) noexcept;

  const TimingMark mark_;
  std::optional<DebugGroup> group_;
  std::shared_ptr<GpuTrack> track_;  // null: not measured
  std::uint64_t trace_ = 0;
  void* context_ = nullptr;
};

}  // namespace oct::gl
