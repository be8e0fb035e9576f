// Timing marks as a file in Chrome's trace format, which Perfetto opens.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "core/timing_mark.h"

namespace oct {

// Ends the trace that is being written, and begins another one unless the path is empty. "%p" in the path stands for the
// number of the process. Throws a SystemError when the file cannot be written; then the trace before goes on.
void set_trace_file(const std::string& path);

// Counts the traces of the process while one is being written; 0: none is.
std::uint64_t current_trace();

// A track beside those of the threads, whose times come late but in their order. The numbers hold for the process.
class TraceTrack {
 public:
  using Time = TimingListener::Time;

  explicit TraceTrack(std::string name);

  // In the given trace; nothing when it is not the current one any more. Ends belong to the latest open begin.
  void begin(std::uint64_t trace, std::string_view name, Time time) const;
  void end(std::uint64_t trace, Time time) const;

 private:
  const std::uint32_t number_;
  const std::string name_;
  mutable std::uint64_t named_in_ = 0;  // the trace that knows its name
};

}  // namespace oct
