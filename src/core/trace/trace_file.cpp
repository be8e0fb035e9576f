#include "core/trace/trace_file.h"

#include <atomic>
#include <chrono>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <thread>
#include <utility>

#include "core/console.h"
#include "core/immortal.h"
#include "core/log.h"
#include "core/platform.h"
#include "core/trace/thread_name.h"
#include "core/trace/trace_stream.h"

namespace oct {
namespace {

// Above the numbers that systems give to threads.
constexpr std::uint32_t first_track = 0x4000'0000;

constinit std::atomic<std::uint32_t> next_track{first_track};
constinit std::atomic<std::uint64_t> trace_number{0};  // of the current one
constinit thread_local std::uint64_t named_in = 0;     // the trace that knows the calling thread's name

std::string expanded(std::string path) {
  for (std::size_t at = path.find("%p"); at != std::string::npos; at = path.find("%p", at)) {
    const std::string number = std::to_string(current_process_id());
    path.replace(at, 2, number);
    at += number.size();
  }
  return path;
}

class TraceWriter : public TimingListener {
 public:
  void set_file(const std::string& path) {
    const std::lock_guard setting(setting_);
    {
      const std::lock_guard lock(mutex_);
      // Truncating the file that is being written would mix the two.
      if (stream_ && !path.empty() && stream_->is_file(path)) end();
    }
    auto next = path.empty() ? nullptr : std::make_unique<TraceStream>(path);
    remove_timing_listener(*this);
    await_timing_calls(*this);
    {
      const std::lock_guard lock(mutex_);
      end();
      stream_ = std::move(next);
      if (!stream_) return;
      trace_number = ++count_;
    }
    try {
      add_timing_listener(*this);
    } catch (...) {
      const std::lock_guard lock(mutex_);
      end();
      throw;
    }
  }

  void begin(std::string_view name, std::uint32_t thread, Time time) override {
    write([&](TraceStream& stream) {
      name_thread_once(stream, thread);
      stream.begin(thread, name, time);
    });
  }
  void end(std::string_view, std::uint32_t thread, Time time) override {
    write([&](TraceStream& stream) { stream.end(thread, time); });
  }
  void instant(std::string_view name, std::uint32_t thread, Time time) override {
    write([&](TraceStream& stream) {
      name_thread_once(stream, thread);
      stream.instant(thread, name, time);
    });
  }
  void wait(std::string_view name, Time begin, Time end) override {
    write([&](TraceStream& stream) { stream.wait(name, begin, end); });
  }

  // Nothing where the stream has ended, and when that of the number has.
  template <class Action>
  void write(Action&& action, std::uint64_t number = 0) {
    if (closing_) return;
    const std::lock_guard lock(mutex_);
    if (!stream_ || (number != 0 && number != trace_number)) return;
    try {
      action(*stream_);
    } catch (const std::exception& error) {
      end();
      write_error(error.what(), " The trace ends. ");
      log() << "Trace: " << error.what() << " The trace ends. ";
    }
  }

  // A thread that has been stopped within a mark never lets go; the file is whole all the same, as it was written last.
  void close() {
    closing_ = true;
    std::unique_lock lock(mutex_, std::try_to_lock);
    for (int attempt = 0; !lock && attempt < 20; ++attempt) {
      std::this_thread::sleep_for(std::chrono::milliseconds(1));
      lock.try_lock();
    }
    if (lock) end();
  }

 private:
  void end() {
    trace_number = 0;
    stream_.reset();
  }

  static void name_thread_once(TraceStream& stream, std::uint32_t thread) {
    if (std::exchange(named_in, trace_number.load()) == trace_number) return;
    const std::string name = thread_name();
    stream.name_track(thread, name.empty() ? "thread " + std::to_string(thread) : name);
  }

  std::mutex setting_;  // one at a time
  std::mutex mutex_;
  std::unique_ptr<TraceStream> stream_;
  std::uint64_t count_ = 0;
  std::atomic<bool> closing_{false};  // the library goes
};

TraceWriter& trace_writer() {
  return immortal<TraceWriter>();
}

// A client that asks for a trace by the environment gets no error of a call that it has not made.
bool begin_trace_of_environment() noexcept {
  try {
    const char* const path = std::getenv("OCT_RENDERING_TRACE");
    if (path && *path) set_trace_file(path);
    return true;
  } catch (const std::exception& error) {
    write_error("OCT_RENDERING_TRACE: ", error.what());
    log() << "OCT_RENDERING_TRACE: " << error.what();
    return false;
  }
}

[[maybe_unused]] const bool begun_at_load = begin_trace_of_environment();

}  // namespace

void set_trace_file(const std::string& path) {
  trace_writer().set_file(expanded(path));
}

std::uint64_t current_trace() {
  return trace_number.load(std::memory_order_relaxed);
}

TraceTrack::TraceTrack(std::string name) : number_(next_track++), name_(std::move(name)) {}

void TraceTrack::begin(std::uint64_t trace, std::string_view name, Time time) const {
  trace_writer().write(
      [&](TraceStream& stream) {
        if (std::exchange(named_in_, trace) != trace) stream.name_track(number_, name_);
        stream.begin(number_, name, time);
      },
      trace);
}

void TraceTrack::end(std::uint64_t trace, Time time) const {
  trace_writer().write([&](TraceStream& stream) { stream.end(number_, time); }, trace);
}

}  // namespace oct
