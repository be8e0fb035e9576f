// A file of trace events that is whole at any time.
#pragma once

#include <chrono>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <string_view>

#include "core/timing_mark.h"

namespace oct {

// Events are gathered and written some at a time, each time with the closing bracket, which the next ones are written
// over. So a process that is killed leaves a file that is only short of the latest events.
class TraceStream {
 public:
  using Time = TimingListener::Time;

  // Throws a SystemError when the file cannot be written.
  explicit TraceStream(const std::string& path);
  ~TraceStream();  // closes what is open
  TraceStream(const TraceStream&) = delete;
  TraceStream& operator=(const TraceStream&) = delete;

  // A file that another one is about to be written to.
  bool is_file(const std::string& path) const;

  // Each throws a SystemError when the file can no longer be written, and leaves what there was until then.
  void name_track(std::uint32_t track, std::string_view name);
  void begin(std::uint32_t track, std::string_view name, Time time);
  void end(std::uint32_t track, Time time);  // nothing where none is open
  void instant(std::uint32_t track, std::string_view name, Time time);
  void wait(std::string_view name, Time begin, Time end);

 private:
  struct Close {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };

  void add(const char* phase, std::uint32_t track, Time time);
  void finish_event(Time now);
  void add_escaped(std::string_view text);
  void write();
  [[noreturn]] void fail();

  const std::string path_;
  const std::uint32_t process_;  // a child of it shares the file, but writes nothing there
  std::unique_ptr<std::FILE, Close> file_;
  long whole_ = 0;  // bytes before the closing bracket
  std::string events_;
  Time written_;
  std::map<std::uint32_t, std::uint64_t> open_;  // how many phases of each track
  std::uint64_t waits_ = 0;
};

}  // namespace oct
