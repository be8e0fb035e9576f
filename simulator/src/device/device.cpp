#include "device/device.h"

#include "device/phantom_source.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <utility>

namespace oct::simulator {
namespace {

[[noreturn]] void failStopped() {
  throw std::runtime_error("The measurement was stopped while a volume was being acquired. ");
}

}  // namespace

Device::Device(std::unique_ptr<VolumeSource> source, std::uint64_t seed)
    : source_(std::move(source)), analogInput_(seed), lastVolumes_(source_->cameras(), -1) {}

Device::Device(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom, std::uint64_t seed,
               int cameras)
    : Device(std::make_unique<PhantomSource>(spectrometer, std::move(phantom), seed, cameras), seed) {}

void Device::setMotion(const Motion& motion) {
  const std::lock_guard lock(mutex_);
  motion_ = motion;
}

void Device::setPace(const Pace& pace) {
  pace.check();
  const std::lock_guard lock(mutex_);
  pace_ = pace;
}

void Device::start(const ScanPattern& pattern, int mode) {
  if (mode != 0) throw std::invalid_argument("The only acquisition mode is 0, continuous. ");
  const std::lock_guard lock(mutex_);
  if (pattern_) throw std::logic_error("A measurement is already running. ");
  pattern_ = source_->effectivePattern(pattern);
  const auto last = *std::ranges::max_element(lastVolumes_);
  std::ranges::fill(lastVolumes_, last);
  lastExposure_.reset();
  measurement_.emplace(pace_, pattern_->aScans() * pattern_->bScans(), static_cast<std::uint64_t>(last + 1),
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
  auto exposure = nextExposure(camera, stops);
  waitFor(exposure.volume, stops);
  exposure.workers = workers;
  exposure.givenUp = [this, stops] { return stops_ != stops; };
  source_->expose(exposure, raw);
  if (stops_ != stops) {
    raw = RawData();
    failStopped();
  }
}

Exposure Device::nextExposure(int camera, std::uint64_t& stops) {
  const std::lock_guard lock(mutex_);
  if (!pattern_) throw std::logic_error("No measurement is running. ");
  stops = stops_;
  auto& last = lastVolumes_[camera];
  const auto newest = *std::ranges::max_element(lastVolumes_);
  // All cameras are triggered together: after one has been read, the others give the same volume.
  if (newest > last)
    last = newest;
  else
    last = static_cast<std::int64_t>(
        measurement_->next(static_cast<std::uint64_t>(last + 1), PacedMeasurement::Clock::now()));
  const auto volume = static_cast<std::uint64_t>(last);
  lastExposure_.emplace(Exposure{.pattern = *pattern_,
                                 .volume = volume,
                                 .camera = camera,
                                 .motion = source_->effectiveMotion(motion_),
                                 .startSeconds = measurement_->startSeconds(volume),
                                 .aScanSeconds = 1.0 / measurement_->pace().aScansPerSecond});
  return *lastExposure_;
}

void Device::waitFor(std::uint64_t volume, std::uint64_t stops) {
  std::unique_lock lock(mutex_);
  if (!measurement_->pace().isRealTime) return;
  if (stopped_.wait_until(lock, measurement_->ready(volume), [&] { return stops_ != stops; })) failStopped();
}

void Device::readAnalogInput(Data& data) {
  std::unique_lock lock(mutex_);
  if (!pattern_) throw std::logic_error("No measurement is running. ");
  if (!lastExposure_) throw std::logic_error("No volume has been acquired yet. ");
  const Exposure exposure = *lastExposure_;
  lock.unlock();
  analogInput_.read(exposure, data);
}

}  // namespace oct::simulator
