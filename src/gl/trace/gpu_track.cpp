#include "gl/trace/gpu_track.h"

#include <algorithm>
#include <map>
#include <mutex>
#include <utility>

#include "core/immortal.h"
#include "core/platform.h"
#include "core/trace/thread_name.h"

namespace oct::gl {
namespace {

constexpr std::uint64_t passes_late = 4;   // outermost ones, of which a loop has two in a frame
constexpr std::size_t most_stamps = 4096;  // of a GPU that does not get there
constexpr auto clock_interval = std::chrono::seconds(1);

int bits_of_gpu_clock() {
  GLint bits = 0;
  glGetQueryiv(GL_TIMESTAMP, GL_QUERY_COUNTER_BITS, &bits);
  return bits;
}

struct Tracks {
  std::mutex mutex;
  std::map<ContextIdentity, std::shared_ptr<GpuTrack>> of;
};

Tracks& tracks() {
  return immortal<Tracks>();
}

std::shared_ptr<GpuTrack> find_track(ContextIdentity context) {
  const std::lock_guard lock(tracks().mutex);
  const auto found = tracks().of.find(context);
  return found == tracks().of.end() ? nullptr : found->second;
}

}  // namespace

void GpuTrack::restart(std::uint64_t trace) {
  for (Stamp& stamp : stamps_) {
    if (stamp.query) unused_.push_back(std::move(stamp.query));
  }
  stamps_.clear();
  trace_ = trace;
  open_ = 0;
  latest_ = {};
  bits_ = bits_of_gpu_clock();
  read_clocks();
}

// Asks for the time at which commands get to the driver, which waits for none of them.
void GpuTrack::read_clocks() {
  if (bits_ == 0) return;
  const Time before = std::chrono::steady_clock::now();
  glGetInteger64v(GL_TIMESTAMP, &clocks_.gpu);
  clocks_.cpu = before + (std::chrono::steady_clock::now() - before) / 2;
}

// A clock of few bits begins anew every now and then.
GpuTrack::Time GpuTrack::time_of(GLuint64 gpu) const {
  const int unused_bits = std::max(64 - bits_, 0);
  const auto since = static_cast<std::int64_t>((gpu - static_cast<GLuint64>(clocks_.gpu)) << unused_bits);
  return clocks_.cpu + std::chrono::nanoseconds(since >> unused_bits);
}

bool GpuTrack::begin(std::uint64_t trace, std::string_view name) {
  if (trace != trace_) restart(trace);
  if (bits_ == 0 || stamps_.size() >= most_stamps) return false;
  if (open_ == 0) {
    ++pass_;
    if (std::chrono::steady_clock::now() - clocks_.cpu >= clock_interval) read_clocks();
    if (pass_ > passes_late) collect_until(pass_ - passes_late);
  }
  add(std::string(name), true);
  ++open_;
  return true;
}

void GpuTrack::end(std::uint64_t trace, bool in_context) {
  if (trace != trace_) return;
  add({}, in_context);
  // A stamp that stays with the driver would tell when the next frame's commands came.
  if (--open_ == 0 && in_context) glFlush();
}

void GpuTrack::add(std::string name, bool counted) {
  Stamp& stamp = stamps_.emplace_back();
  stamp.name = std::move(name);
  stamp.pass = pass_;
  if (!counted) return;
  if (!unused_.empty()) {
    stamp.query = std::move(unused_.back());
    unused_.pop_back();
  }
  if (!stamp.query) stamp.query = Query::create();
  if (stamp.query) glQueryCounter(stamp.query.get(), GL_TIMESTAMP);
  if (stamp.query && glIsQuery(stamp.query.get()) == GL_FALSE)
    stamp.query.reset();  // refused for the first time
}

// In their order. A time that lies before the one before, as where a driver works on several commands at once, would
// part what belongs together.
void GpuTrack::collect_until(std::uint64_t pass) {
  while (!stamps_.empty() && stamps_.front().pass <= pass) {
    Stamp& stamp = stamps_.front();
    if (stamp.query) {
      GLint available = GL_FALSE;
      glGetQueryObjectiv(stamp.query.get(), GL_QUERY_RESULT_AVAILABLE, &available);
      if (available == GL_FALSE) return;
      GLuint64 gpu = 0;
      glGetQueryObjectui64v(stamp.query.get(), GL_QUERY_RESULT, &gpu);
      latest_ = std::max(latest_, time_of(gpu));
      unused_.push_back(std::move(stamp.query));
    }
    stamp.name.empty() ? track_.end(trace_, latest_) : track_.begin(trace_, stamp.name, latest_);
    stamps_.pop_front();
  }
}

std::shared_ptr<GpuTrack> current_gpu_track() {
  const ContextIdentity context = glQueryCounter && glGetQueryObjectui64v ? require_identity() : no_context;
  if (context == no_context) return nullptr;
  if (auto found = find_track(context)) return found;
  const std::string thread = thread_name();
  auto made = std::make_shared<GpuTrack>(
      "GPU, " + (thread.empty() ? "thread " + std::to_string(current_thread_id()) : thread));
  const std::lock_guard lock(tracks().mutex);
  std::erase_if(tracks().of, [](const auto& entry) { return !is_known(entry.first); });
  tracks().of[context] = made;
  return made;
}

void collect_gpu_times() noexcept {
  if (current_trace() == 0) return;
  try {
    if (const auto track = find_track(current_identity())) track->collect();
  } catch (const std::exception&) {
    // Lost times are better than a lost frame.
  }
}

void forget_gpu_track(ContextIdentity context) noexcept {
  std::shared_ptr<GpuTrack> track;  // ends after the lock
  const std::lock_guard lock(tracks().mutex);
  const auto found = tracks().of.find(context);
  if (found == tracks().of.end()) return;
  track = std::move(found->second);
  tracks().of.erase(found);
}

}  // namespace oct::gl
