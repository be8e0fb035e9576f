#include "device/device.h"

#include <algorithm>
#include <limits>
#include <stdexcept>
#include <string>
#include <utility>

#include "device/phantom_source.h"

namespace oct::simulator {
namespace {

[[noreturn]] void fail_stopped() {
  throw std::runtime_error("The measurement was stopped while a volume was being acquired. ");
}

}  // namespace

Device::Device(std::unique_ptr<VolumeSource> source, std::uint64_t seed)
    : source_(std::move(source)), analog_input_(seed), last_volumes_(source_->cameras(), -1) {}

Device::Device(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom, std::uint64_t seed,
               int cameras)
    : Device(std::make_unique<PhantomSource>(spectrometer, std::move(phantom), seed, cameras), seed) {}

void Device::set_motion(const Motion& motion) {
  const std::lock_guard lock(mutex_);
  motion_ = motion;
}

void Device::set_pace(const Pace& pace) {
  pace.check();
  const std::lock_guard lock(mutex_);
  pace_ = pace;
}

void Device::start(const ScanPattern& pattern, int mode) {
  if (mode != 0) throw std::invalid_argument("The only acquisition mode is 0, continuous. ");
  const std::lock_guard lock(mutex_);
  if (pattern_) throw std::logic_error("A measurement is already running. ");
  std::ranges::fill(last_volumes_, *std::ranges::max_element(last_volumes_));
  last_exposure_.reset();
  lost_ = 0;
  begin(pattern);
}

void Device::change_pattern(const ScanPattern& pattern) {
  const std::lock_guard lock(mutex_);
  if (!pattern_) throw std::logic_error("No measurement is running. ");
  begin(pattern);
}

void Device::begin(const ScanPattern& pattern) {
  pattern_ = source_->effective_pattern(pattern);
  const auto next = static_cast<std::uint64_t>(*std::ranges::max_element(last_volumes_) + 1);
  measurement_.emplace(pace_, pattern_->a_scans() * pattern_->b_scans(), next,
                       PacedMeasurement::Clock::now());
}

void Device::stop() {
  const std::lock_guard lock(mutex_);
  pattern_.reset();
  ++stops_;
  stopped_.notify_all();
}

void Device::acquire(RawData& raw, int camera, int workers) {
  if (camera < 0 || camera >= cameras())
    throw std::invalid_argument(cameras() == 1 ? "The device has camera 0 only. "
                                               : "The device has the cameras 0 and 1. ");
  const std::lock_guard exposing(exposing_);
  std::uint64_t stops = 0;
  auto exposure = next_exposure(camera, stops);
  wait_for(exposure.volume, stops);
  exposure.workers = workers;
  exposure.given_up = [this, stops] { return stops_ != stops; };
  source_->expose(exposure, raw);
  if (stops_ != stops) {
    raw = RawData();
    fail_stopped();
  }
}

Exposure Device::next_exposure(int camera, std::uint64_t& stops) {
  const std::lock_guard lock(mutex_);
  if (!pattern_) throw std::logic_error("No measurement is running. ");
  stops = stops_;
  auto& last = last_volumes_[camera];
  const auto newest = *std::ranges::max_element(last_volumes_);
  // All cameras are triggered together: after one has been read, the others give the same volume.
  if (newest > last) {
    last = newest;
    last_exposure_->camera = camera;
    return *last_exposure_;
  }
  const auto earliest = static_cast<std::uint64_t>(last + 1);
  const auto volume = measurement_->next(earliest, PacedMeasurement::Clock::now());
  lost_ += volume - earliest;
  last = static_cast<std::int64_t>(volume);
  last_exposure_.emplace(Exposure{.pattern = *pattern_,
                                  .volume = volume,
                                  .camera = camera,
                                  .motion = source_->effective_motion(motion_),
                                  .start_seconds = measurement_->start_seconds(volume),
                                  .a_scan_seconds = 1.0 / measurement_->pace().a_scans_per_second});
  return *last_exposure_;
}

void Device::wait_for(std::uint64_t volume, std::uint64_t stops) {
  std::unique_lock lock(mutex_);
  if (!measurement_->pace().is_real_time) return;
  if (stopped_.wait_until(lock, measurement_->ready(volume), [&] { return stops_ != stops; })) fail_stopped();
}

int Device::lost_volumes() const {
  const std::lock_guard lock(mutex_);
  constexpr std::uint64_t most = std::numeric_limits<int>::max();
  return static_cast<int>(std::min(lost_, most));
}

void Device::read_analog_input(Data& data) {
  std::unique_lock lock(mutex_);
  if (!pattern_) throw std::logic_error("No measurement is running. ");
  if (!last_exposure_) throw std::logic_error("No volume has been acquired yet. ");
  const Exposure exposure = *last_exposure_;
  lock.unlock();
  analog_input_.read(exposure, data);
}

}  // namespace oct::simulator
