#include "interferometer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace oct::simulator {
namespace {

constexpr double kPi = std::numbers::pi;

/// A pixel adds the light of its whole width and so blurs fine fringes, those from great depth.
/// @param relativeDepth depth as a part of the depth range
double rollOffAt(double relativeDepth) {
  const double angle = 0.5 * kPi * relativeDepth;
  return angle < 1e-6 ? 1.0 : std::sin(angle) / angle;
}

}  // namespace

Interferometer::Scratch::Scratch(int spectrumLength)
    : fourier_(spectrumLength),
      scatterers_(spectrumLength / 2),
      depths_(spectrumLength),
      evenWaves_(spectrumLength),
      waves_(spectrumLength) {
  profile_.scattering.resize(spectrumLength / 2);
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

void Interferometer::measure(double xMm, double yMm, Scratch& scratch, std::span<float> light) const {
  auto& profile = scratch.profile_;
  std::fill(profile.scattering.begin(), profile.scattering.end(), 0.0f);
  profile.reflectors.clear();
  phantom_->describe(xMm, yMm, depthStepMm_, profile);
  scatterField_.read(xMm, yMm, scratch.scatterers_);

  // Depth m relative to the middle goes to place (m - N/4) modulo N.
  const int count = spectrumLength_;
  const int middle = count / 4;
  std::fill(scratch.depths_.begin(), scratch.depths_.end(), std::complex<float>{});
  const auto perCell = static_cast<float>(std::sqrt(depthStepMm_));
  float samplePower = 0.0f;
  for (int m = 0; m < count / 2; ++m) {
    const auto wave = profile.scattering[m] * perCell * rollOff_[m] * scratch.scatterers_[m];
    scratch.depths_[m >= middle ? m - middle : m - middle + count] = wave;
    samplePower += std::norm(wave);
  }
  scratch.fourier_.backward(scratch.depths_.data(), scratch.evenWaves_.data());
  for (const auto& reflector : profile.reflectors) {
    addReflector(reflector, scratch.evenWaves_);
    samplePower += reflector.amplitude * reflector.amplitude;
  }

  toPixels_.apply(scratch.evenWaves_.data(), scratch.waves_.data());
  // Fringe amplitude is twice the amplitude ratio of the arms, so the sample's own light is a quarter of it
  // squared.
  const float steady = 1.0f + 0.25f * samplePower;
  for (int pixel = 0; pixel < count; ++pixel)
    light[pixel] = source_[pixel] * (steady + (scratch.waves_[pixel] * carrier_[pixel]).real());
}

void Interferometer::addReflector(const Reflector& reflector,
                                  std::vector<std::complex<float>>& evenWaves) const {
  const double depthRange = depthStepMm_ * (spectrumLength_ / 2);
  if (!(reflector.depthMm >= 0.0 && reflector.depthMm < depthRange)) return;
  const double amplitude = reflector.amplitude * rollOffAt(reflector.depthMm / depthRange);
  const double turn = 2.0 * wavenumberStep_ * reflector.depthMm - middleTurn_;
  const auto step = std::polar(1.0, turn);
  auto wave = std::polar(amplitude, std::remainder(2.0 * firstWavenumber_ * reflector.depthMm, 2.0 * kPi));
  for (auto& sum : evenWaves) {
    sum += std::complex<float>(wave);
    wave *= step;
  }
}

}  // namespace oct::simulator
