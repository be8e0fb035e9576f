#include "optics/interferometer.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace oct::simulator {
namespace {

constexpr double pi = std::numbers::pi;

// Further than any scan reaches.
constexpr double stray_distance_mm = 400.0;

// A pixel adds the light of its whole width and so blurs fine fringes, those from great depth.
// relative_depth: depth as a part of the depth range
double roll_off_at(double relative_depth) {
  const double angle = 0.5 * pi * relative_depth;
  return angle < 1e-6 ? 1.0 : std::sin(angle) / angle;
}

}  // namespace

Interferometer::Scratch::Scratch(int spectrum_length, int sensors)
    : fourier_(spectrum_length),
      scatterers_(spectrum_length / 2),
      views_(sensors),
      even_waves_(spectrum_length),
      waves_(spectrum_length),
      light_(spectrum_length) {
  for (auto& view : views_) view.depths.resize(spectrum_length);
  const int cells = spectrum_length / 2;
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
    : spectrum_length_(spectrometer.spectrum_length()),
      depth_step_mm_(spectrometer.depth_step_mm()),
      first_wavenumber_(spectrometer.first_wavenumber()),
      wavenumber_step_(spectrometer.wavenumber_step()),
      middle_turn_(2.0 * pi * (spectrum_length_ / 4) / spectrum_length_),
      phantom_(std::move(phantom)),
      scatter_field_(seed),
      to_pixels_(spectrum_length_, spectrometer.wavenumber_positions()),
      source_(spectrometer.source_spectrum()) {
  const int depth_count = spectrum_length_ / 2;
  for (int m = 0; m < depth_count; ++m)
    roll_off_.push_back(static_cast<float>(roll_off_at(static_cast<double>(m) / depth_count)));
  // The waves are computed with half the depth range as the origin of depth: half as fast fringes can be read
  // between their samples far more exactly. The carrier puts the origin back.
  const auto& positions = spectrometer.wavenumber_positions();
  const auto dispersion = spectrometer.dispersion_phase();
  for (int pixel = 0; pixel < spectrum_length_; ++pixel) {
    const double phase = middle_turn_ * positions[pixel] + dispersion[pixel];
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
      take_lane(scratch.light_.data(), lane, row.size(), row.data());
    }
  }
}

void Interferometer::describe(const BeamPlace& place, Scratch& scratch) const {
  auto& profile = scratch.profile_;
  std::fill(profile.scattering.begin(), profile.scattering.end(), 0.0F);
  profile.reflectors.clear();
  auto& polarization = profile.polarization;
  for (auto* values : {&polarization.retardance, &polarization.axis, &polarization.depolarization})
    std::fill(values->begin(), values->end(), 0.0F);
  phantom_->describe(place.x_mm, place.y_mm, depth_step_mm_, profile);
  scatter_field_.read(place.x_mm, place.y_mm, scratch.scatterers_);
  if (!profile.is_polarized()) return;

  LightPath path;
  bool strays = false;
  for (std::size_t m = 0; m < scratch.polarizations_.size(); ++m) {
    scratch.polarizations_[m] = path.returned();
    path.pass(polarization.retardance[m], polarization.axis[m]);
    strays = strays || polarization.depolarization[m] > 0.0F;
  }
  // Light without a common polarization forms a speckle pattern of its own on each sensor: that of a far
  // away piece of the same disorder.
  for (std::size_t sensor = 0; sensor < scratch.strays_.size(); ++sensor)
    if (strays)
      scatter_field_.read(place.x_mm + stray_distance_mm * (1.0 + static_cast<double>(sensor)), place.y_mm,
                          scratch.strays_[sensor]);
}

// What a sensor sees of the light scattered in a cell, relative to the scattered amplitude.
std::complex<float> Interferometer::weight(const Scratch& scratch, int sensor, int cell) const {
  if (!scratch.profile_.is_polarized()) return scratch.scatterers_[cell];
  const float lost = scratch.profile_.polarization.depolarization[cell];
  const auto kept = scratch.polarizations_[cell][sensor] * scratch.scatterers_[cell];
  if (!(lost > 0.0F)) return kept;
  return std::sqrt(1.0F - lost) * kept + std::sqrt(0.5F * lost) * scratch.strays_[sensor][cell];
}

// Enters what a sensor sees of the A-scan that was described last.
void Interferometer::scatter(int sensor, int lane, Scratch& scratch) const {
  const auto& profile = scratch.profile_;
  auto& view = scratch.views_[sensor];
  const ComplexLane depths(view.depths, lane);
  // Depth m relative to the middle goes to place (m - N/4) modulo N; the places between stay empty.
  const int count = spectrum_length_;
  const int middle = count / 4;
  const auto per_cell = static_cast<float>(std::sqrt(depth_step_mm_));
  float sample_power = 0.0F;
  for (int m = 0; m < count / 2; ++m) {
    const auto wave = profile.scattering[m] * per_cell * roll_off_[m] * weight(scratch, sensor, m);
    depths.set(m >= middle ? m - middle : m - middle + count, wave);
    sample_power += std::norm(wave);
  }
  view.reflectors[lane] = profile.reflectors;
  view.parts[lane].clear();
  for (const auto& reflector : profile.reflectors) {
    const int cell = std::clamp(static_cast<int>(reflector.depth_mm / depth_step_mm_), 0, count / 2 - 1);
    const auto part =
        profile.is_polarized() ? scratch.polarizations_[cell][sensor] : std::complex<float>(1.0F);
    view.parts[lane].push_back(part);
    sample_power += reflector.amplitude * reflector.amplitude * std::norm(part);
  }
  view.sample_powers[lane] = sample_power;
}

void Interferometer::interfere(const Scratch::View& view, std::span<const BeamPlace> places,
                               Scratch& scratch) const {
  scratch.fourier_.backward(view.depths.data(), scratch.even_waves_.data());
  for (int lane = 0; lane < static_cast<int>(places.size()); ++lane) {
    for (std::size_t i = 0; i < view.reflectors[lane].size(); ++i)
      add_reflector(view.reflectors[lane][i], view.parts[lane][i], lane, scratch.even_waves_);
    if (places[lane].deeper_mm != 0.0) move_deeper(places[lane].deeper_mm, lane, scratch.even_waves_);
  }
  to_pixels_.apply(scratch.even_waves_.data(), scratch.waves_.data());
  // Fringe amplitude is twice the amplitude ratio of the arms, so the sample's own
  // light is a quarter of it squared.
  const auto steady = Lanes(1.0F) + Lanes(0.25F) * Lanes(_mm_loadu_ps(view.sample_powers.data()));
  for (int pixel = 0; pixel < spectrum_length_; ++pixel) {
    const auto& wave = scratch.waves_[pixel];
    const auto fringe = wave.real() * carrier_[pixel].real() - wave.imag() * carrier_[pixel].imag();
    scratch.light_[pixel] = source_[pixel] * larger(steady + fringe, 0.0F);
  }
}

void Interferometer::add_reflector(const Reflector& reflector, std::complex<float> weight, int lane,
                                   Waves& even_waves) const {
  const double depth_range = depth_step_mm_ * (spectrum_length_ / 2);
  if (!(reflector.depth_mm >= 0.0 && reflector.depth_mm < depth_range)) return;
  const double amplitude = reflector.amplitude * roll_off_at(reflector.depth_mm / depth_range);
  const double turn = 2.0 * wavenumber_step_ * reflector.depth_mm - middle_turn_;
  const auto step = std::polar(1.0, turn);
  auto wave = std::complex<double>(weight) *
              std::polar(amplitude, std::remainder(2.0 * first_wavenumber_ * reflector.depth_mm, 2.0 * pi));
  const ComplexLane sums(even_waves, lane);
  for (std::size_t i = 0; i < even_waves.size(); ++i) {
    sums.set(i, sums.get(i) + std::complex<float>(wave));
    wave *= step;
  }
}

// A longer way turns the phase of every wave by the wavenumber times the way there and back.
void Interferometer::move_deeper(double distance_mm, int lane, Waves& even_waves) const {
  const auto step = std::polar(1.0, 2.0 * wavenumber_step_ * distance_mm);
  auto turn = std::polar(1.0, std::remainder(2.0 * first_wavenumber_ * distance_mm, 2.0 * pi));
  const ComplexLane waves(even_waves, lane);
  for (std::size_t i = 0; i < even_waves.size(); ++i) {
    waves.set(i, waves.get(i) * std::complex<float>(turn));
    turn *= step;
  }
}

}  // namespace oct::simulator
