#include "device.h"

#include "noise.h"
#include "parallel.h"

#include <stdexcept>
#include <utility>

namespace oct::simulator {

Device::Device(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom, std::uint64_t seed)
    : spectrometer_(spectrometer), interferometer_(spectrometer, std::move(phantom), seed), camera_(seed) {}

Calibration Device::calibration() const {
  Calibration calibration{.depthRangeMm = spectrometer_.depthRangeMm(),
                          .wavenumberPositions = spectrometer_.wavenumberPositions(),
                          .compensationPhase = spectrometer_.dispersionPhase(),
                          .background = spectrometer_.sourceSpectrum()};
  for (auto& phase : calibration.compensationPhase) phase = -phase;
  for (auto& reading : calibration.background) reading = Camera::meanCount(reading);
  return calibration;
}

void Device::start(const ScanPattern& pattern, int mode) {
  if (mode != 0) throw std::invalid_argument("The only acquisition mode is 0, continuous. ");
  const std::lock_guard lock(mutex_);
  if (pattern_) throw std::logic_error("A measurement is already running. ");
  pattern_ = pattern;
}

void Device::stop() {
  const std::lock_guard lock(mutex_);
  pattern_.reset();
  ++stops_;
}

void Device::acquire(RawData& raw, int camera, int workers) {
  if (camera != 0) throw std::invalid_argument("The device has camera 0 only. ");
  std::unique_lock lock(mutex_);
  if (!pattern_) throw std::logic_error("No measurement is running. ");
  const ScanPattern pattern = *pattern_;
  const std::uint64_t volume = volumes_++;
  const std::uint64_t stops = stops_;
  lock.unlock();

  const int length = spectrometer_.spectrumLength();
  raw.resize(length, pattern.aScans(), pattern.bScans(), pattern.widthMm(), pattern.lengthMm());
  parallelRanges(pattern.aScans() * pattern.bScans(), workers, [&](int begin, int end) {
    Interferometer::Scratch scratch(length);
    std::vector<float> light(length);
    for (int index = begin; index < end && stops_ == stops; ++index) {
      const double x = pattern.xMm(index % pattern.aScans());
      const double y = pattern.yMm(index / pattern.aScans());
      interferometer_.measure(x, y, scratch, light);
      camera_.expose(light, mix(volume, static_cast<std::uint64_t>(index)), raw.spectrum(index));
    }
  });
  if (stops_ != stops) {
    raw = RawData();
    throw std::runtime_error("The measurement was stopped while a volume was being acquired. ");
  }
}

}  // namespace oct::simulator
