#include "optics/interferometer.h"

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
      views_(sensors),
      evenWaves_(spectrumLength),
      waves_(spectrumLength),
      light_(spectrumLength) {
  for (auto& view : views_) view.depths.resize(spectrumLength);
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

void Interferometer::measure(std::span<const BeamPlace> places, Scratch& scratch,
                             std::span<const std::span<float>> light) const {
  const int sensors = static_cast<int>(scratch.views_.size());
  const int lanes = static_cast<int>(places.size());
  for (int lane = 0; lane < lanes; ++lane) {
    describe(places[lane], scratch);
    for (int sensor = 0; sensor < sensors; ++sensor) scatter(sensor, lane, scratch);
  }
  for (int sensor = 0; sensor < sensors; ++sensor) {
    interfere(scratch.views_[sensor], places, scratch);
    for (int lane = 0; lane < lanes; ++lane) {
      const auto row = light[lane * sensors + sensor];
      takeLane(scratch.light_.data(), lane, row.size(), row.data());
    }
  }
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

/// Enters what a sensor sees of the A-scan that was described last.
void Interferometer::scatter(int sensor, int lane, Scratch& scratch) const {
  const auto& profile = scratch.profile_;
  auto& view = scratch.views_[sensor];
  const ComplexLane depths(view.depths, lane);
  // Depth m relative to the middle goes to place (m - N/4) modulo N; the places between stay empty.
  const int count = spectrumLength_;
  const int middle = count / 4;
  const auto perCell = static_cast<float>(std::sqrt(depthStepMm_));
  float samplePower = 0.0f;
  for (int m = 0; m < count / 2; ++m) {
    const auto wave = profile.scattering[m] * perCell * rollOff_[m] * weight(scratch, sensor, m);
    depths.set(m >= middle ? m - middle : m - middle + count, wave);
    samplePower += std::norm(wave);
  }
  view.reflectors[lane] = profile.reflectors;
  view.parts[lane].clear();
  for (const auto& reflector : profile.reflectors) {
    const int cell = std::clamp(static_cast<int>(reflector.depthMm / depthStepMm_), 0, count / 2 - 1);
    const auto part =
        profile.isPolarized() ? scratch.polarizations_[cell][sensor] : std::complex<float>(1.0f);
    view.parts[lane].push_back(part);
    samplePower += reflector.amplitude * reflector.amplitude * std::norm(part);
  }
  view.samplePowers[lane] = samplePower;
}

void Interferometer::interfere(const Scratch::View& view, std::span<const BeamPlace> places,
                               Scratch& scratch) const {
  scratch.fourier_.backward(view.depths.data(), scratch.evenWaves_.data());
  for (int lane = 0; lane < static_cast<int>(places.size()); ++lane) {
    for (std::size_t i = 0; i < view.reflectors[lane].size(); ++i)
      addReflector(view.reflectors[lane][i], view.parts[lane][i], lane, scratch.evenWaves_);
    if (places[lane].deeperMm != 0.0) moveDeeper(places[lane].deeperMm, lane, scratch.evenWaves_);
  }
  toPixels_.apply(scratch.evenWaves_.data(), scratch.waves_.data());
  // Fringe amplitude is twice the amplitude ratio of the arms, so the sample's own light is a quarter of it
  // squared.
  const auto steady = Lanes(1.0f) + Lanes(0.25f) * Lanes(_mm_loadu_ps(view.samplePowers.data()));
  for (int pixel = 0; pixel < spectrumLength_; ++pixel) {
    const auto& wave = scratch.waves_[pixel];
    const auto fringe = wave.real() * carrier_[pixel].real() - wave.imag() * carrier_[pixel].imag();
    scratch.light_[pixel] = source_[pixel] * larger(steady + fringe, 0.0f);
  }
}

void Interferometer::addReflector(const Reflector& reflector, std::complex<float> weight, int lane,
                                  Waves& evenWaves) const {
  const double depthRange = depthStepMm_ * (spectrumLength_ / 2);
  if (!(reflector.depthMm >= 0.0 && reflector.depthMm < depthRange)) return;
  const double amplitude = reflector.amplitude * rollOffAt(reflector.depthMm / depthRange);
  const double turn = 2.0 * wavenumberStep_ * reflector.depthMm - middleTurn_;
  const auto step = std::polar(1.0, turn);
  auto wave = std::complex<double>(weight) *
              std::polar(amplitude, std::remainder(2.0 * firstWavenumber_ * reflector.depthMm, 2.0 * kPi));
  const ComplexLane sums(evenWaves, lane);
  for (std::size_t i = 0; i < evenWaves.size(); ++i) {
    sums.set(i, sums.get(i) + std::complex<float>(wave));
    wave *= step;
  }
}

/// A longer way turns the phase of every wave by the wavenumber times the way there and back.
void Interferometer::moveDeeper(double distanceMm, int lane, Waves& evenWaves) const {
  const auto step = std::polar(1.0, 2.0 * wavenumberStep_ * distanceMm);
  auto turn = std::polar(1.0, std::remainder(2.0 * firstWavenumber_ * distanceMm, 2.0 * kPi));
  const ComplexLane waves(evenWaves, lane);
  for (std::size_t i = 0; i < evenWaves.size(); ++i) {
    waves.set(i, waves.get(i) * std::complex<float>(turn));
    turn *= step;
  }
}

}  // namespace oct::simulator
