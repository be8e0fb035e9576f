#include "device/phantom_source.h"

#include "base/noise.h"
#include "base/parallel.h"

#include <algorithm>
#include <array>
#include <utility>

namespace oct::simulator {
namespace {

/// Spectra without noise that need more bytes than this are computed anew for every volume.
constexpr std::size_t kLargestKept = std::size_t{1} << 30;

}  // namespace

/// Computes the spectra without noise, a few A-scans at a time; one per thread.
class PhantomSource::Simulation {
 public:
  Simulation(const PhantomSource& source, const Exposure& exposure)
      : source_(source),
        exposure_(exposure),
        scratch_(source.spectrumLength(), source.cameras()),
        values_(static_cast<std::size_t>(source.spectrumLength()) * source.cameras() * Lanes::kCount) {
    const auto length = static_cast<std::size_t>(source.spectrumLength());
    for (std::size_t row = 0; row < values_.size() / length; ++row)
      light_.push_back(std::span(values_).subspan(row * length, length));
  }

  /// Computes the A-scans from begin to end, unless the exposure is given up.
  /// @param take receives the A-scan's number, the camera and the light
  template <typename Take>
  void run(int begin, int end, Take take) {
    for (int first = begin; first < end && !exposure_.givenUp(); first += Lanes::kCount) {
      const int count = std::min(Lanes::kCount, end - first);
      std::array<BeamPlace, Lanes::kCount> places;
      for (int lane = 0; lane < count; ++lane) places[lane] = exposure_.place(first + lane);
      source_.interferometer_.measure(std::span(places).first(count), scratch_, light_);
      for (int lane = 0; lane < count; ++lane)
        for (int camera = 0; camera < source_.cameras(); ++camera)
          take(first + lane, camera, std::span<const float>(light_[lane * source_.cameras() + camera]));
    }
  }

 private:
  const PhantomSource& source_;
  const Exposure& exposure_;
  Interferometer::Scratch scratch_;
  std::vector<float> values_;
  std::vector<std::span<float>> light_;  // camera after camera for every A-scan
};

PhantomSource::PhantomSource(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom,
                             std::uint64_t seed, int cameras)
    : spectrometer_(spectrometer), interferometer_(spectrometer, std::move(phantom), seed) {
  for (int camera = 0; camera < cameras; ++camera)
    cameras_.emplace_back(camera == 0 ? seed : mix(seed, static_cast<std::uint64_t>(camera)));
  kept_.resize(cameras_.size());
}

Calibration PhantomSource::calibration() const {
  Calibration calibration{.depthRangeMm = spectrometer_.depthRangeMm(),
                          .wavenumberPositions = spectrometer_.wavenumberPositions(),
                          .compensationPhase = spectrometer_.dispersionPhase(),
                          .background = spectrometer_.sourceSpectrum()};
  for (auto& phase : calibration.compensationPhase) phase = -phase;
  for (auto& reading : calibration.background) reading = Camera::meanCount(reading);
  return calibration;
}

void PhantomSource::expose(const Exposure& exposure, RawData& raw) {
  const auto& pattern = exposure.pattern;
  const int length = spectrumLength();
  const int count = pattern.aScans() * pattern.bScans();
  const auto& camera = cameras_[exposure.camera];
  const auto noise = [&](int index) { return mix(exposure.volume, static_cast<std::uint64_t>(index)); };
  raw.resize(length, pattern.aScans(), pattern.bScans(), pattern.widthMm(), pattern.lengthMm());
  if (!isKeepable(exposure)) {
    parallelRanges(count, exposure.workers, [&](int begin, int end) {
      Simulation simulation(*this, exposure);
      std::vector<std::uint16_t> mean(length);
      simulation.run(begin, end, [&](int index, int of, std::span<const float> light) {
        if (of != exposure.camera) return;
        Camera::meanReading(light, mean);
        camera.expose(mean, noise(index), raw.spectrum(index));
      });
    });
    return;
  }
  if (!keep(exposure)) return;
  const std::span kept(std::as_const(kept_[exposure.camera]));
  parallelRanges(count, exposure.workers, [&](int begin, int end) {
    for (int index = begin; index < end && !exposure.givenUp(); ++index)
      camera.expose(kept.subspan(static_cast<std::size_t>(index) * length, length), noise(index),
                    raw.spectrum(index));
  });
}

bool PhantomSource::isKeepable(const Exposure& exposure) const {
  const auto aScans = static_cast<std::size_t>(exposure.pattern.aScans()) * exposure.pattern.bScans();
  const auto bytes = aScans * spectrumLength() * sizeof(std::uint16_t) * cameras_.size();
  // Of a moving phantom only the spectra for the other camera are worth keeping.
  return bytes <= kLargestKept && (!exposure.motion.moves() || cameras_.size() > 1);
}

/// Computes the spectra without noise unless they are there. @return false if it was given up
bool PhantomSource::keep(const Exposure& exposure) {
  const Key key{exposure.pattern, exposure.motion.moves() ? std::optional(exposure.volume) : std::nullopt};
  if (key_ == key) return true;
  key_.reset();
  const int length = spectrumLength();
  const int count = exposure.pattern.aScans() * exposure.pattern.bScans();
  for (auto& kept : kept_) kept.resize(static_cast<std::size_t>(count) * length);
  parallelRanges(count, exposure.workers, [&](int begin, int end) {
    Simulation simulation(*this, exposure);
    simulation.run(begin, end, [&](int index, int camera, std::span<const float> light) {
      const auto row = std::span(kept_[camera]).subspan(static_cast<std::size_t>(index) * length, length);
      Camera::meanReading(light, row);
    });
  });
  if (exposure.givenUp()) return false;
  key_ = key;
  return true;
}

}  // namespace oct::simulator
