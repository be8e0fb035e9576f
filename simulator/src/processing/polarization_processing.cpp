#include "processing/polarization_processing.h"

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstdint>
#include <numbers>
#include <stdexcept>

#include "base/parallel.h"
#include "vec/vec.h"

namespace oct::simulator {
namespace {

// Keeps the logarithm and the divisions finite: -60 dB.
constexpr float least_intensity = 1e-6F;

constexpr float degrees_per_radian = 180.0F / std::numbers::pi_v<float>;

int checked_places(int places) {
  if (places < 1) throw std::invalid_argument("An averaging count must be 1 or more. ");
  return places;
}

StokesVolume stokes_of(const ComplexData& sensor0, const ComplexData& sensor1, int workers) {
  StokesVolume stokes(sensor0.sizes());
  const auto rows = sensor0.sizes()[1] * sensor0.sizes()[2];
  const std::size_t depths = sensor0.sizes()[0];
  float* const i = stokes.component(0).data();
  float* const q = stokes.component(1).data();
  float* const u = stokes.component(2).data();
  float* const v = stokes.component(3).data();
  const auto* const field0 = sensor0.samples().data();
  const auto* const field1 = sensor1.samples().data();
  parallel_ranges(rows, workers, [&](int begin, int end) {
    for (std::size_t n = begin * depths; n < end * depths; ++n) {
      const float power0 = std::norm(field0[n]);
      const float power1 = std::norm(field1[n]);
      const auto product = field1[n] * std::conj(field0[n]);
      i[n] = power0 + power1;
      q[n] = power0 - power1;
      u[n] = 2.0F * product.real();
      v[n] = 2.0F * product.imag();
    }
  });
  return stokes;
}

// The quantity of one Stokes vector of power i, which is above zero; of the intensity the power itself.
float value_of(PolarizationProcessing::Quantity quantity, float i, float q, float u, float v) {
  switch (quantity) {
    case PolarizationProcessing::retardation:
      // The sensors see the cosine and the sine of the retardation.
      return 0.5F * degrees_per_radian * std::atan2(std::hypot(u, v), q);
    case PolarizationProcessing::optic_axis: {
      // The phase between the sensors is twice the axis less a quarter turn: half the angle of (-v, u).
      const float degrees = 0.5F * degrees_per_radian * std::atan2(u, -v);
      return degrees < 0.0F ? degrees + 180.0F : degrees;
    }
    case PolarizationProcessing::dopu:
      return std::min(std::sqrt(q * q + u * u + v * v) / i, 1.0F);
    case PolarizationProcessing::stokes_q:
      return std::clamp(q / i, -1.0F, 1.0F);
    case PolarizationProcessing::stokes_u:
      return std::clamp(u / i, -1.0F, 1.0F);
    case PolarizationProcessing::stokes_v:
      return std::clamp(v / i, -1.0F, 1.0F);
    default:
      return i;
  }
}

}  // namespace

void PolarizationProcessing::set_output(Quantity quantity, const std::shared_ptr<Data>& output) {
  for (auto& other : outputs_)
    if (other.lock() == output) other.reset();
  outputs_[quantity] = output;
}

void PolarizationProcessing::set_threshold(double decibels) {
  if (!std::isfinite(decibels)) throw std::invalid_argument("The threshold must be finite. ");
  threshold_ = decibels;
}

void PolarizationProcessing::set_averaging(int axis, int places) {
  averaging_[axis] = checked_places(places);
}

void PolarizationProcessing::set_dopu_box(int axis, int places) {
  dopu_box_[axis] = checked_places(places);
}

void PolarizationProcessing::set_volume_averaging(int volumes) {
  volumes_ = checked_places(volumes);
  if (volumes_ > 1) return;
  earlier_ = StokesVolume();
  earlier_count_ = 0;
}

void PolarizationProcessing::execute(const ComplexData& sensor0, const ComplexData& sensor1, int workers) {
  const auto wanted = outputs();
  if (sensor0.samples().empty() || sensor1.samples().empty())
    throw std::invalid_argument("The complex data of a sensor is empty. ");
  if (sensor0.sizes() != sensor1.sizes())
    throw std::invalid_argument("The complex data of the two sensors differ in size. ");
  auto stokes = stokes_of(sensor0, sensor1, workers);
  if (volumes_ > 1) add_to_earlier(stokes, workers);
  stokes.average(averaging_, workers);
  for (int quantity = 0; quantity < quantity_count; ++quantity) {
    if (!wanted[quantity] || quantity == dopu) continue;
    wanted[quantity]->resize(sensor0.sizes(), sensor0.ranges_mm());
    write(static_cast<Quantity>(quantity), stokes, wanted[quantity]->samples(), workers);
  }
  if (!wanted[dopu]) return;
  stokes.average(dopu_box_, workers);
  wanted[dopu]->resize(sensor0.sizes(), sensor0.ranges_mm());
  write(dopu, stokes, wanted[dopu]->samples(), workers);
}

PolarizationProcessing::Outputs PolarizationProcessing::outputs() const {
  Outputs outputs;
  std::ranges::transform(outputs_, outputs.begin(), [](const auto& output) { return output.lock(); });
  if (std::ranges::none_of(outputs, [](const auto& output) { return output != nullptr; }))
    throw std::logic_error("No output was set, or it was cleared. ");
  return outputs;
}

// A running mean: it starts as the plain mean and forgets volumes slowly from then on, so that one volume
// has to be remembered instead of many.
void PolarizationProcessing::add_to_earlier(StokesVolume& stokes, int workers) {
  if (earlier_.sizes() != stokes.sizes()) earlier_count_ = 0;
  earlier_count_ = std::min(earlier_count_ + 1, volumes_);
  const float weight = 1.0F / static_cast<float>(earlier_count_);
  if (earlier_count_ > 1)
    for (int component = 0; component < StokesVolume::components; ++component) {
      float* const values = stokes.component(component).data();
      const float* const before = earlier_.component(component).data();
      const int rows = stokes.sizes()[1] * stokes.sizes()[2];
      const std::size_t depths = stokes.sizes()[0];
      parallel_ranges(rows, workers, [&](int begin, int end) {
        for (std::size_t n = begin * depths; n < end * depths; ++n)
          values[n] = before[n] + weight * (values[n] - before[n]);
      });
    }
  earlier_ = stokes;
}

void PolarizationProcessing::write(Quantity quantity, const StokesVolume& stokes, std::span<float> samples,
                                   int workers) const {
  const bool cut = threshold_enabled_ && quantity != intensity;
  const auto least = cut ? static_cast<float>(std::pow(10.0, 0.1 * threshold_)) : 0.0F;
  const int rows = stokes.sizes()[1] * stokes.sizes()[2];
  const std::size_t depths = stokes.sizes()[0];
  parallel_ranges(rows, workers, [&](int begin, int end) {
    if (quantity == intensity) {
      const std::size_t first = begin * depths;
      vec::decibels(samples.data() + first, stokes.component(0).data() + first, (end - begin) * depths,
                    least_intensity);
      return;
    }
    for (std::size_t n = begin * depths; n < end * depths; ++n) {
      const float i = std::max(stokes.component(0)[n], least_intensity);
      samples[n] = i < least ? 0.0F
                             : value_of(quantity, i, stokes.component(1)[n], stokes.component(2)[n],
                                        stokes.component(3)[n]);
    }
  });
}

}  // namespace oct::simulator
