#include "phantoms/scatter_field.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

#include "base/noise.h"

namespace oct::simulator {
namespace {

// Numbers in the pool; every lattice column is a piece of it that starts at a random place.
constexpr std::size_t pool_size = std::size_t{1} << 18;

// Distance of lattice columns.
constexpr double lattice_mm = 0.006;

// Standard deviation of the beam's amplitude profile, in lattice distances: a spot of about 13 micrometres.
constexpr double beam_sigma = 0.8;

constexpr int columns = 4;

std::array<double, columns> beam_weights(double offset) {
  std::array<double, columns> weights{};
  for (int i = 0; i < columns; ++i) {
    const double distance = (i - 1 - offset) / beam_sigma;
    weights[i] = std::exp(-0.5 * distance * distance);
  }
  return weights;
}

}  // namespace

ScatterField::ScatterField(std::uint64_t seed) : seed_(seed), pool_(pool_size) {
  std::mt19937_64 random(mix(seed, 0x5CA7));
  std::normal_distribution<float> part(0.0F, std::numbers::sqrt2_v<float> / 2.0F);
  for (auto& number : pool_) {
    const float real = part(random);
    number = {real, part(random)};
  }
}

void ScatterField::read(double x_mm, double y_mm, std::vector<std::complex<float>>& field) const {
  const double u = x_mm / lattice_mm;
  const double v = y_mm / lattice_mm;
  const int iu = static_cast<int>(std::floor(u));
  const int iv = static_cast<int>(std::floor(v));
  const auto across = beam_weights(u - iu);
  const auto along = beam_weights(v - iv);
  double power = 0.0;
  for (const double a : along)
    for (const double b : across) power += a * b * a * b;
  const double scale = 1.0 / std::sqrt(power);

  std::fill(field.begin(), field.end(), std::complex<float>{});
  // Complex numbers are pairs of floats; plain float arithmetic lets the compiler use vector instructions.
  auto* sums = reinterpret_cast<float*>(field.data());
  const std::size_t floats = 2 * field.size();
  for (int j = 0; j < columns; ++j)
    for (int i = 0; i < columns; ++i) {
      const auto weight = static_cast<float>(scale * along[j] * across[i]);
      const auto start = mix(seed_, iu + i, iv + j) % (pool_size - field.size());
      const auto* column = reinterpret_cast<const float*>(pool_.data() + start);
      for (std::size_t n = 0; n < floats; ++n) sums[n] += weight * column[n];
    }
}

}  // namespace oct::simulator
