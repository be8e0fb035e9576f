#include "interferometer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace oct::simulator {
namespace {

constexpr double kPi = std::numbers::pi;

/// Further than any scan reaches.
constexpr double kStrayDistanceMm = 400.0;

/// A pixel adds the light of its whole width and so blurs fine fringes, those from great depth.
/// @param relativeDepth depth as a part of the depth range
double rollOffAt(double relativeDepth) {
  const double angle = 0.5 * kPi * relativeDepth;
  return angle < 1e-6 ? 1.0 : std::sin(angle) / angle;
}

}  // namespace

Interferometer::Scratch::Scratch(int spectrumLength, int sensors)
    : fourier_(spectrumLength),
      scatterers_(spectrumLength / 2),
      depths_(spectrumLength),
      evenWaves_(spectrumLength),
      waves_(spectrumLength) {
  const int cells = spectrumLength / 2;
  profile_.scattering.resize(cells);
  if (sensors < 2) return;
  auto& polarization = profile_.polarization;
  for (auto* values : {&polarization.retardance, &polarization.axis, &polarization.depolarization})
    values->resize(cells);
  polarizations_.resize(cells);
  for (auto& stray : strays_) stray.resize(cells);
}

Interferometer::Interferometer(const Spectrometer& spectrometer, std::shared_ptr<const Phantom> phantom,
                               std::uint64_t seed)
    : spectrumLength_(spectrometer.spectrumLength()),
      depthStepMm_(spectrometer.depthStepMm()),
      firstWavenumber_(spectrometer.firstWavenumber()),
      wavenumberStep_(spectrometer.wavenumberStep()),
      middleTurn_(2.0 * kPi * (spectrumLength_ / 4) / spectrumLength_),
      phantom_(std::move(phantom)),
      scatterField_(seed),
      toPixels_(spectrumLength_, spectrometer.wavenumberPositions()),
      source_(spectrometer.sourceSpectrum()) {
  const int depthCount = spectrumLength_ / 2;
  for (int m = 0; m < depthCount; ++m)
    rollOff_.push_back(static_cast<float>(rollOffAt(static_cast<double>(m) / depthCount)));
  // The waves are computed with half the depth range as the origin of depth: half as fast fringes can be read
  // between their samples far more exactly. The carrier puts the origin back.
  const auto& positions = spectrometer.wavenumberPositions();
  const auto dispersion = spectrometer.dispersionPhase();
  for (int pixel = 0; pixel < spectrumLength_; ++pixel) {
    const double phase = middleTurn_ * positions[pixel] + dispersion[pixel];
    carrier_.emplace_back(static_cast<float>(std::cos(phase)), static_cast<float>(std::sin(phase)));
  }
}

void Interferometer::measure(const BeamPlace& place, Scratch& scratch,
                             std::span<const std::span<float>> light) const {
  describe(place, scratch);
  for (int sensor = 0; sensor < static_cast<int>(light.size()); ++sensor)
    interfere(sensor, place, scratch, light[sensor]);
}

void Interferometer::describe(const BeamPlace& place, Scratch& scratch) const {
  auto& profile = scratch.profile_;
  std::fill(profile.scattering.begin(), profile.scattering.end(), 0.0f);
  profile.reflectors.clear();
  auto& polarization = profile.polarization;
  for (auto* values : {&polarization.retardance, &polarization.axis, &polarization.depolarization})
    std::fill(values->begin(), values->end(), 0.0f);
  phantom_->describe(place.xMm, place.yMm, depthStepMm_, profile);
  scatterField_.read(place.xMm, place.yMm, scratch.scatterers_);
  if (!profile.isPolarized()) return;

  LightPath path;
  bool strays = false;
  for (std::size_t m = 0; m < scratch.polarizations_.size(); ++m) {
    scratch.polarizations_[m] = path.returned();
    path.pass(polarization.retardance[m], polarization.axis[m]);
    strays = strays || polarization.depolarization[m] > 0.0f;
  }
  // Light without a common polarization forms a speckle pattern of its own on each sensor: that of a far
  // away piece of the same disorder.
  for (std::size_t sensor = 0; sensor < scratch.strays_.size(); ++sensor)
    if (strays)
      scatterField_.read(place.xMm + kStrayDistanceMm * (1.0 + static_cast<double>(sensor)), place.yMm,
                         scratch.strays_[sensor]);
}

/// What a sensor sees of the light scattered in a cell, relative to the scattered amplitude.
std::complex<float> Interferometer::weight(const Scratch& scratch, int sensor, int cell) const {
  if (!scratch.profile_.isPolarized()) return scratch.scatterers_[cell];
  const float lost = scratch.profile_.polarization.depolarization[cell];
  const auto kept = scratch.polarizations_[cell][sensor] * scratch.scatterers_[cell];
  if (!(lost > 0.0f)) return kept;
  return std::sqrt(1.0f - lost) * kept + std::sqrt(0.5f * lost) * scratch.strays_[sensor][cell];
}

void Interferometer::interfere(int sensor, const BeamPlace& place, Scratch& scratch,
                               std::span<float> light) const {
  const auto& profile = scratch.profile_;
  // Depth m relative to the middle goes to place (m - N/4) modulo N.
  const int count = spectrumLength_;
  const int middle = count / 4;
  std::fill(scratch.depths_.begin(), scratch.depths_.end(), std::complex<float>{});
  const auto perCell = static_cast<float>(std::sqrt(depthStepMm_));
  float samplePower = 0.0f;
  for (int m = 0; m < count / 2; ++m) {
    const auto wave = profile.scattering[m] * perCell * rollOff_[m] * weight(scratch, sensor, m);
    scratch.depths_[m >= middle ? m - middle : m - middle + count] = wave;
    samplePower += std::norm(wave);
  }
  scratch.fourier_.backward(scratch.depths_.data(), scratch.evenWaves_.data());
  for (const auto& reflector : profile.reflectors) {
    const int cell = std::clamp(static_cast<int>(reflector.depthMm / depthStepMm_), 0, count / 2 - 1);
    const auto part =
        profile.isPolarized() ? scratch.polarizations_[cell][sensor] : std::complex<float>(1.0f);
    addReflector(reflector, part, scratch.evenWaves_);
    samplePower += reflector.amplitude * reflector.amplitude * std::norm(part);
  }
  if (place.deeperMm != 0.0) moveDeeper(place.deeperMm, scratch.evenWaves_);

  toPixels_.apply(scratch.evenWaves_.data(), scratch.waves_.data());
  // Fringe amplitude is twice the amplitude ratio of the arms, so the sample's own light is a quarter of it
  // squared.
  const float steady = 1.0f + 0.25f * samplePower;
  for (int pixel = 0; pixel < count; ++pixel)
    light[pixel] = source_[pixel] * std::max(steady + (scratch.waves_[pixel] * carrier_[pixel]).real(), 0.0f);
}

void Interferometer::addReflector(const Reflector& reflector, std::complex<float> weight,
                                  std::vector<std::complex<float>>& evenWaves) const {
  const double depthRange = depthStepMm_ * (spectrumLength_ / 2);
  if (!(reflector.depthMm >= 0.0 && reflector.depthMm < depthRange)) return;
  const double amplitude = reflector.amplitude * rollOffAt(reflector.depthMm / depthRange);
  const double turn = 2.0 * wavenumberStep_ * reflector.depthMm - middleTurn_;
  const auto step = std::polar(1.0, turn);
  auto wave = std::complex<double>(weight) *
              std::polar(amplitude, std::remainder(2.0 * firstWavenumber_ * reflector.depthMm, 2.0 * kPi));
  for (auto& sum : evenWaves) {
    sum += std::complex<float>(wave);
    wave *= step;
  }
}

/// A longer way turns the phase of every wave by the wavenumber times the way there and back.
void Interferometer::moveDeeper(double distanceMm, std::vector<std::complex<float>>& evenWaves) const {
  const auto step = std::polar(1.0, 2.0 * wavenumberStep_ * distanceMm);
  auto turn = std::polar(1.0, std::remainder(2.0 * firstWavenumber_ * distanceMm, 2.0 * kPi));
  for (auto& wave : evenWaves) {
    wave *= std::complex<float>(turn);
    turn *= step;
  }
}

}  // namespace oct::simulator
