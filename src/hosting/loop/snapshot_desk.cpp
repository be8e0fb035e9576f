#include "hosting/loop/snapshot_desk.h"

#include <exception>
#include <utility>

#include "core/timing_mark.h"

namespace oct {

bool SnapshotDesk::place(const Order& order) {
  const TimingMark outer_mark("OpenGLControl::snapshot");
  const TimingMark inner_mark("OffscreenBuffer::set_output_data");
  const std::lock_guard lock(mutex_);
  if (closed_) throw StateError(closed_);
  if (state_ != State::free) return false;
  order_ = order;
  state_ = State::placed;
  return true;
}

void SnapshotDesk::wait() {
  // Whatever fails meanwhile, the client must not go while its memory may be written to.
  struct Leave {
    SnapshotDesk& desk;
    ~Leave() {
      std::unique_lock lock(desk.mutex_);
      desk.changed_.wait(lock, [this] { return desk.state_ == State::done; });
      desk.state_ = State::free;
      // Under the lock: as soon as the desk is seen to be free, it may be gone.
      desk.changed_.notify_all();
    }
  } const leave{*this};
  const TimingMark outer_mark("OpenGLControl::wait_for_snapshot");
  const TimingMark inner_mark("OffscreenBuffer::wait");
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return state_ == State::done; });
  if (failed_ == ErrorKind::none) return;
  const std::string reason = std::exchange(failure_, {});
  throw Exception(failed_, reason.empty() ? "The snapshot could not be drawn. " : reason);
}

bool SnapshotDesk::has_order() const {
  const std::lock_guard lock(mutex_);
  return state_ == State::placed;
}

bool SnapshotDesk::busy() const {
  const std::lock_guard lock(mutex_);
  return state_ == State::placed || state_ == State::taken;
}

std::optional<SnapshotDesk::Order> SnapshotDesk::take() {
  const std::lock_guard lock(mutex_);
  if (state_ != State::placed) return {};
  state_ = State::taken;
  return order_;
}

void SnapshotDesk::finish() noexcept {
  set_done(ErrorKind::none, "");
}

void SnapshotDesk::fail(ErrorKind kind, const char* reason) noexcept {
  set_done(kind, reason);
}

void SnapshotDesk::set_done(ErrorKind kind, const char* reason) noexcept {
  const std::lock_guard lock(mutex_);
  if (state_ != State::placed && state_ != State::taken) return;
  failed_ = kind;
  try {
    failure_ = reason;
  } catch (const std::exception&) {
    failure_.clear();
  }
  state_ = State::done;
  changed_.notify_all();
}

void SnapshotDesk::close(const char* reason) noexcept {
  const std::lock_guard lock(mutex_);
  closed_ = reason;
}

void SnapshotDesk::drain() {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [this] { return state_ == State::free; });
}

}  // namespace oct
