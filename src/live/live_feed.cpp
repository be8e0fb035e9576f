#include "live/live_feed.h"

#include <chrono>
#include <limits>
#include <stdexcept>
#include <utility>

#include "core/exception.h"
#include "core/log.h"

namespace oct {
namespace {

// A source that waited longer would lose touch with its device.
constexpr std::chrono::milliseconds patience{100};

void require(const VolumeExtent& extent) {
  const auto [depth, a_scans, b_scans] = extent;
  if (depth < 0 || a_scans < 0 || b_scans < 0) {
    throw std::invalid_argument("Volume sizes must not be negative. ");
  }
  constexpr std::int64_t limit = std::numeric_limits<std::int32_t>::max();
  if (depth * a_scans > limit || depth * a_scans * b_scans > limit) {
    throw std::invalid_argument("The volume has too many voxels for live rendering. ");
  }
}

}  // namespace

// ---- Claims and requests

LiveClaim LiveFeed::start(const LiveFormat& format) {
  require(format.extent);
  const auto [depth, a_scans, b_scans] = format.extent;
  log() << "FastOpenGLVolumeRenderer::set_size: " << depth << " x " << a_scans << " x " << b_scans;
  log() << "Start called";
  const std::lock_guard in_use(renderer_mutex_);  // the source before has finished with the volume renderer
  const std::lock_guard lock(mutex_);
  if (gone_) throw StateError("The live renderer of the source was cleared. ");
  claim_ = ++last_claim_;
  format_ = format;
  request(LiveState::initialize);
  return claim_;
}

void LiveFeed::invalidate(LiveClaim claim) {
  log() << "Invalidate called, size_z = " << extent().b_scans;
  const std::lock_guard lock(mutex_);
  if (holds(claim)) request(LiveState::invalidated);
}

void LiveFeed::request(LiveState state) {
  state_ = state;
  ++number_;
  completed_ = false;
  failure_.clear();
  buffer_claim_ = no_claim;  // what is mapped is of the format before
  changed_.notify_all();
}

bool LiveFeed::wait_for_transition(LiveClaim claim) {
  std::unique_lock lock(mutex_);
  changed_.wait(lock, [&] { return !holds(claim) || completed_ || !failure_.empty(); });
  if (!holds(claim)) return false;
  if (!completed_) throw StateError(failure_);
  return true;
}

void LiveFeed::stop(LiveClaim claim) {
  {
    const std::lock_guard lock(mutex_);
    if (!holds(claim)) return;
    claim_ = no_claim;
    request(LiveState::deinitialize_requested);
  }
  log() << "Stop called";
}

bool LiveFeed::is_gone() const {
  const std::lock_guard lock(mutex_);
  return gone_;
}

bool LiveFeed::is_current(LiveClaim claim) const {
  const std::lock_guard lock(mutex_);
  return holds(claim);
}

bool LiveFeed::has_renderer() const {
  const std::lock_guard lock(renderer_mutex_);
  return renderer_ != nullptr;
}

void LiveFeed::set_renderer(VolumeRenderer* renderer) {
  const std::lock_guard lock(renderer_mutex_);
  renderer_ = renderer;
}

LiveFeed::Request LiveFeed::observe() const {
  const std::lock_guard lock(mutex_);
  return {state_, number_, claim_, format_};
}

LiveState LiveFeed::state() const {
  const std::lock_guard lock(mutex_);
  return state_;
}

VolumeExtent LiveFeed::extent() const {
  const std::lock_guard lock(mutex_);
  return format_.extent;
}

void LiveFeed::complete_start(const Request& request) {
  const std::lock_guard lock(mutex_);
  if (request.number != number_) return;
  state_ = LiveState::running;
  completed_ = true;
  changed_.notify_all();
}

void LiveFeed::fail_start(const Request& request, const std::string& error) {
  const std::lock_guard lock(mutex_);
  if (request.number != number_) return;
  failure_ = error.empty() ? "An unknown error. " : error;
  changed_.notify_all();
}

void LiveFeed::complete_stop(const Request& request) {
  const std::lock_guard lock(mutex_);
  if (request.number == number_) state_ = LiveState::stopped;
}

void LiveFeed::close() {
  {
    const std::lock_guard lock(mutex_);
    gone_ = true;
    claim_ = no_claim;
    request(LiveState::stopped);
  }
  set_renderer(nullptr);
  withdraw();
}

// ---- The buffer

float* LiveFeed::take(LiveClaim claim) {
  float* data = nullptr;
  bool in_time = false;
  {
    std::unique_lock lock(mutex_);
    if (!holds(claim)) return nullptr;
    in_time = changed_.wait_for(lock, patience, [&] {
      return !holds(claim) || (buffer_ == BufferState::free && buffer_claim_ == claim);
    });
    if (!in_time) {
      ++statistics_.counts.dropped_no_frame;
    } else if (!holds(claim)) {
      ++statistics_.counts.dropped_withdrawn;
    } else {
      buffer_ = BufferState::lent;
      data = data_;
    }
  }
  log() << (in_time ? "FastOpenGLVolumeRenderer::get_data_ptr(): ResetEvent"
                    : "FastOpenGLVolumeRenderer::get_data_ptr(): WAIT_TIMEOUT on ptr_event");
  return data;
}

void LiveFeed::give_back() {
  const std::lock_guard lock(mutex_);
  if (buffer_ == BufferState::lent) buffer_ = BufferState::free;
  if (buffer_ == BufferState::recalled) buffer_ = BufferState::unmapped;
  changed_.notify_all();
}

void LiveFeed::fill(LiveDelivery& delivery) {
  {
    const std::lock_guard lock(mutex_);
    if (buffer_ == BufferState::lent) {
      buffer_ = BufferState::filled;
      std::swap(delivery_, delivery);
      ++statistics_.counts.handed_over;
    } else if (buffer_ == BufferState::recalled) {
      buffer_ = BufferState::unmapped;
      ++statistics_.counts.dropped_withdrawn;
    }
    changed_.notify_all();
  }
  log() << "FastOpenGLVolumeRenderer::update()";
}

void LiveFeed::offer(LiveClaim claim, float* data) {
  const std::lock_guard lock(mutex_);
  data_ = data;
  buffer_ = BufferState::free;
  buffer_claim_ = claim;
  changed_.notify_all();
}

bool LiveFeed::is_mapped() const {
  const std::lock_guard lock(mutex_);
  return buffer_ != BufferState::unmapped;
}

bool LiveFeed::collect(LiveDelivery& delivery) {
  const std::lock_guard lock(mutex_);
  if (buffer_ != BufferState::filled) return false;
  buffer_ = BufferState::unmapped;
  std::swap(delivery, delivery_);
  return true;
}

bool LiveFeed::withdraw() {
  std::unique_lock lock(mutex_);
  const bool mapped = buffer_ != BufferState::unmapped;
  if (buffer_ == BufferState::lent) buffer_ = BufferState::recalled;
  changed_.wait(lock, [this] { return buffer_ != BufferState::recalled; });
  if (buffer_ == BufferState::filled) ++statistics_.counts.dropped_withdrawn;
  buffer_ = BufferState::unmapped;
  data_ = nullptr;
  return mapped;
}

// ---- Counts

void LiveFeed::count_acquired(LiveClaim claim, std::uint64_t lost) {
  const std::lock_guard lock(mutex_);
  if (!holds(claim)) return;
  ++statistics_.counts.acquired;
  statistics_.counts.dropped_by_device += lost;
}

void LiveFeed::count_shown(LiveTime processed) {
  const LiveTime now = std::chrono::steady_clock::now();
  const std::lock_guard lock(mutex_);
  statistics_.show(processed, now);
}

void LiveFeed::count_lost_by_driver() {
  const std::lock_guard lock(mutex_);
  ++statistics_.counts.dropped_by_driver;
}

LiveCounts LiveFeed::counts() const {
  const std::lock_guard lock(mutex_);
  return statistics_.counts;
}

LiveStatistics LiveFeed::statistics() const {
  const std::lock_guard lock(mutex_);
  return statistics_;
}

}  // namespace oct
