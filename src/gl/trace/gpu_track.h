// When the GPU came to the passes of a context, on the clock of the processor.
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "core/trace/trace_file.h"
#include "gl/context/context_identity.h"
#include "gl/gl_names.h"

namespace oct::gl {

// Counts a time stamp in the command stream for each begin and end of a pass, and reads it when the GPU has got there: some
// frames later, without waiting. Of the thread that has the context current.
class GpuTrack {
 public:
  explicit GpuTrack(std::string name) : track_(std::move(name)) {}

  // False where the pass is not measured.
  bool begin(std::uint64_t trace, std::string_view name);
  void end(std::uint64_t trace, bool in_context);

  // Reads what is there.
  void collect() { collect_until(pass_); }

 private:
  using Time = TimingListener::Time;

  struct Stamp {
    Query query;       // without one: at the same time as the stamp before
    std::string name;  // of a pass that begins; empty: one ends
    std::uint64_t pass = 0;
  };

  // The GPU's clock and the processor's at one time.
  struct Clocks {
    GLint64 gpu = 0;  // nanoseconds
    Time cpu;
  };

  void restart(std::uint64_t trace);
  void read_clocks();
  Time time_of(GLuint64 gpu) const;
  void add(std::string name, bool counted);
  void collect_until(std::uint64_t pass);

  const TraceTrack track_;
  std::uint64_t trace_ = 0;
  int bits_ = 0;  // of the GPU's clock
  Clocks clocks_;
  Time latest_;             // that was told
  std::uint64_t pass_ = 0;  // counts the outermost ones
  unsigned open_ = 0;
  std::deque<Stamp> stamps_;
  std::vector<Query> unused_;
};

// Of the current context; null where it has no identity or no such clock.
std::shared_ptr<GpuTrack> current_gpu_track();

// Reads the times that have come of the current context. Where the GPU has been waited for, these are all.
void collect_gpu_times() noexcept;

// The context of the library's own is about to end.
void forget_gpu_track(ContextIdentity context) noexcept;

}  // namespace oct::gl
