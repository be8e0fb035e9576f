#include "processing/polarization_processing.h"

#include "base/parallel.h"
#include "vec/vec.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <stdexcept>

namespace oct::simulator {
namespace {

/// Keeps the logarithm and the divisions finite: -60 dB.
constexpr float kLeastPower = 1e-6f;

constexpr float kDegrees = 180.0f / std::numbers::pi_v<float>;

int checkedPlaces(int places) {
  if (places < 1) throw std::invalid_argument("An averaging count must be 1 or more. ");
  return places;
}

StokesVolume stokesOf(const ComplexData& sensor0, const ComplexData& sensor1, int workers) {
  StokesVolume stokes(sensor0.sizes());
  const auto rows = sensor0.sizes()[1] * sensor0.sizes()[2];
  const std::size_t depths = sensor0.sizes()[0];
  float* const i = stokes.component(0).data();
  float* const q = stokes.component(1).data();
  float* const u = stokes.component(2).data();
  float* const v = stokes.component(3).data();
  const auto* const field0 = sensor0.samples().data();
  const auto* const field1 = sensor1.samples().data();
  parallelRanges(rows, workers, [&](int begin, int end) {
    for (std::size_t n = begin * depths; n < end * depths; ++n) {
      const float power0 = std::norm(field0[n]);
      const float power1 = std::norm(field1[n]);
      const auto product = field1[n] * std::conj(field0[n]);
      i[n] = power0 + power1;
      q[n] = power0 - power1;
      u[n] = 2.0f * product.real();
      v[n] = 2.0f * product.imag();
    }
  });
  return stokes;
}

/// The quantity of one Stokes vector of power i, which is above zero; of the intensity the power itself.
float valueOf(PolarizationProcessing::Quantity quantity, float i, float q, float u, float v) {
  switch (quantity) {
    case PolarizationProcessing::kRetardation:
      // The sensors see the cosine and the sine of the retardation.
      return 0.5f * kDegrees * std::atan2(std::hypot(u, v), q);
    case PolarizationProcessing::kOpticAxis: {
      // The phase between the sensors is twice the axis less a quarter turn: half the angle of (-v, u).
      const float degrees = 0.5f * kDegrees * std::atan2(u, -v);
      return degrees < 0.0f ? degrees + 180.0f : degrees;
    }
    case PolarizationProcessing::kDopu:
      return std::min(std::sqrt(q * q + u * u + v * v) / i, 1.0f);
    case PolarizationProcessing::kQ:
      return std::clamp(q / i, -1.0f, 1.0f);
    case PolarizationProcessing::kU:
      return std::clamp(u / i, -1.0f, 1.0f);
    case PolarizationProcessing::kV:
      return std::clamp(v / i, -1.0f, 1.0f);
    default:
      return i;
  }
}

}  // namespace

void PolarizationProcessing::setOutput(Quantity quantity, const std::shared_ptr<Data>& output) {
  for (auto& other : outputs_)
    if (other.lock() == output) other.reset();
  outputs_[quantity] = output;
}

void PolarizationProcessing::setThreshold(double decibels) {
  if (!std::isfinite(decibels)) throw std::invalid_argument("The threshold must be finite. ");
  threshold_ = decibels;
}

void PolarizationProcessing::setAveraging(int axis, int places) {
  averaging_[axis] = checkedPlaces(places);
}

void PolarizationProcessing::setDopuBox(int axis, int places) {
  dopuBox_[axis] = checkedPlaces(places);
}

void PolarizationProcessing::setVolumeAveraging(int volumes) {
  volumes_ = checkedPlaces(volumes);
  if (volumes_ > 1) return;
  earlier_ = StokesVolume();
  earlierCount_ = 0;
}

void PolarizationProcessing::execute(const ComplexData& sensor0, const ComplexData& sensor1, int workers) {
  const auto wanted = outputs();
  if (sensor0.samples().empty() || sensor1.samples().empty())
    throw std::invalid_argument("The complex data of a sensor is empty. ");
  if (sensor0.sizes() != sensor1.sizes())
    throw std::invalid_argument("The complex data of the two sensors differ in size. ");
  auto stokes = stokesOf(sensor0, sensor1, workers);
  if (volumes_ > 1) addToEarlier(stokes, workers);
  stokes.average(averaging_, workers);
  for (int quantity = 0; quantity < kQuantityCount; ++quantity) {
    if (!wanted[quantity] || quantity == kDopu) continue;
    wanted[quantity]->resize(sensor0.sizes(), sensor0.rangesMm());
    write(static_cast<Quantity>(quantity), stokes, wanted[quantity]->samples(), workers);
  }
  if (!wanted[kDopu]) return;
  stokes.average(dopuBox_, workers);
  wanted[kDopu]->resize(sensor0.sizes(), sensor0.rangesMm());
  write(kDopu, stokes, wanted[kDopu]->samples(), workers);
}

PolarizationProcessing::Outputs PolarizationProcessing::outputs() const {
  Outputs outputs;
  std::ranges::transform(outputs_, outputs.begin(), [](const auto& output) { return output.lock(); });
  if (std::ranges::none_of(outputs, [](const auto& output) { return output != nullptr; }))
    throw std::logic_error("No output was set, or it was cleared. ");
  return outputs;
}

/// A running mean: it starts as the plain mean and forgets volumes slowly from then on, so that one volume
/// has to be remembered instead of many.
void PolarizationProcessing::addToEarlier(StokesVolume& stokes, int workers) {
  if (earlier_.sizes() != stokes.sizes()) earlierCount_ = 0;
  earlierCount_ = std::min(earlierCount_ + 1, volumes_);
  const float weight = 1.0f / static_cast<float>(earlierCount_);
  if (earlierCount_ > 1)
    for (int component = 0; component < StokesVolume::kComponents; ++component) {
      float* const values = stokes.component(component).data();
      const float* const before = earlier_.component(component).data();
      const int rows = stokes.sizes()[1] * stokes.sizes()[2];
      const std::size_t depths = stokes.sizes()[0];
      parallelRanges(rows, workers, [&](int begin, int end) {
        for (std::size_t n = begin * depths; n < end * depths; ++n)
          values[n] = before[n] + weight * (values[n] - before[n]);
      });
    }
  earlier_ = stokes;
}

void PolarizationProcessing::write(Quantity quantity, const StokesVolume& stokes, std::span<float> samples,
                                   int workers) const {
  const bool cut = thresholdEnabled_ && quantity != kIntensity;
  const auto least = cut ? static_cast<float>(std::pow(10.0, 0.1 * threshold_)) : 0.0f;
  const int rows = stokes.sizes()[1] * stokes.sizes()[2];
  const std::size_t depths = stokes.sizes()[0];
  parallelRanges(rows, workers, [&](int begin, int end) {
    if (quantity == kIntensity) {
      const std::size_t first = begin * depths;
      vec::decibels(samples.data() + first, stokes.component(0).data() + first, (end - begin) * depths,
                    kLeastPower);
      return;
    }
    for (std::size_t n = begin * depths; n < end * depths; ++n) {
      const float i = std::max(stokes.component(0)[n], kLeastPower);
      samples[n] = i < least ? 0.0f
                             : valueOf(quantity, i, stokes.component(1)[n], stokes.component(2)[n],
                                       stokes.component(3)[n]);
    }
  });
}

}  // namespace oct::simulator
