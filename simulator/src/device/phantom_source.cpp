#include "device/phantom_source.h"

#include <algorithm>
#include <array>
#include <utility>

#include "base/noise.h"
#include "base/parallel.h"

namespace oct::simulator {
namespace {

// Spectra without noise that need more bytes than this are computed anew for every volume.
constexpr std::size_t largest_kept = std::size_t{1} << 30;

}  // namespace

// Computes the spectra without noise, a few A-scans at a time; one per thread.
class PhantomSource::Simulation {
 public:
  Simulation(const PhantomSource& source, const Exposure& exposure)
      : source_(source),
        exposure_(exposure),
        scratch_(source.spectrum_length(), source.cameras()),
        values_(static_cast<std::size_t>(source.spectrum_length()) * source.cameras() * Lanes::count) {
    const auto length = static_cast<std::size_t>(source.spectrum_length());
    for (std::size_t row = 0; row < values_.size() / length; ++row)
      light_.push_back(std::span(values_).subspan(row * length, length));
  }

  // Computes the A-scans from begin to end, unless the exposure is given up.
  // take: receives the A-scan's number, the camera and the light
  template <typename Take>
  void run(int begin, int end, Take take) {
    for (int first = begin; first < end && !exposure_.given_up(); first += Lanes::count) {
      const int count = std::min(Lanes::count, end - first);
      std::array<BeamPlace, Lanes::count> places;
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
  Calibration calibration{.depth_range_mm = spectrometer_.depth_range_mm(),
                          .wavenumber_positions = spectrometer_.wavenumber_positions(),
                          .compensation_phase = spectrometer_.dispersion_phase(),
                          .background = spectrometer_.source_spectrum()};
  for (auto& phase : calibration.compensation_phase) phase = -phase;
  for (auto& reading : calibration.background) reading = Camera::mean_count(reading);
  return calibration;
}

void PhantomSource::expose(const Exposure& exposure, RawData& raw) {
  const auto& pattern = exposure.pattern;
  const int length = spectrum_length();
  const int count = pattern.a_scans() * pattern.b_scans();
  const auto& camera = cameras_[exposure.camera];
  const auto noise = [&](int index) { return mix(exposure.volume, static_cast<std::uint64_t>(index)); };
  raw.resize(length, pattern.a_scans(), pattern.b_scans(), pattern.width_mm(), pattern.length_mm());
  if (!is_keepable(exposure)) {
    parallel_ranges(count, exposure.workers, [&](int begin, int end) {
      Simulation simulation(*this, exposure);
      std::vector<std::uint16_t> mean(length);
      simulation.run(begin, end, [&](int index, int of, std::span<const float> light) {
        if (of != exposure.camera) return;
        Camera::mean_reading(light, mean);
        camera.expose(mean, noise(index), raw.spectrum(index));
      });
    });
    return;
  }
  if (!keep(exposure)) return;
  const std::span kept(std::as_const(kept_[exposure.camera]));
  parallel_ranges(count, exposure.workers, [&](int begin, int end) {
    for (int index = begin; index < end && !exposure.given_up(); ++index)
      camera.expose(kept.subspan(static_cast<std::size_t>(index) * length, length), noise(index),
                    raw.spectrum(index));
  });
}

bool PhantomSource::is_keepable(const Exposure& exposure) const {
  const auto a_scans = static_cast<std::size_t>(exposure.pattern.a_scans()) * exposure.pattern.b_scans();
  const auto bytes = a_scans * spectrum_length() * sizeof(std::uint16_t) * cameras_.size();
  // Of a moving phantom only the spectra for the other camera are worth keeping.
  return bytes <= largest_kept && (!exposure.motion.moves() || cameras_.size() > 1);
}

// Computes the spectra without noise unless they are there. Returns false if it was given up
bool PhantomSource::keep(const Exposure& exposure) {
  const Key key{exposure.pattern, exposure.motion.moves() ? std::optional(exposure.volume) : std::nullopt};
  if (key_ == key) return true;
  key_.reset();
  const int length = spectrum_length();
  const int count = exposure.pattern.a_scans() * exposure.pattern.b_scans();
  for (auto& kept : kept_) kept.resize(static_cast<std::size_t>(count) * length);
  parallel_ranges(count, exposure.workers, [&](int begin, int end) {
    Simulation simulation(*this, exposure);
    simulation.run(begin, end, [&](int index, int camera, std::span<const float> light) {
      const auto row = std::span(kept_[camera]).subspan(static_cast<std::size_t>(index) * length, length);
      Camera::mean_reading(light, row);
    });
  });
  if (exposure.given_up()) return false;
  key_ = key;
  return true;
}

}  // namespace oct::simulator
