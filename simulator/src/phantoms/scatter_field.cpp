#include "phantoms/scatter_field.h"

#include "base/noise.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <random>

namespace oct::simulator {
namespace {

/// Numbers in the pool; every lattice column is a piece of it that starts at a random place.
constexpr std::size_t kPoolSize = std::size_t{1} << 18;

/// Distance of lattice columns.
constexpr double kLatticeMm = 0.006;

/// Standard deviation of the beam's amplitude profile, in lattice distances: a spot of about 13 micrometres.
constexpr double kBeamSigma = 0.8;

constexpr int kColumns = 4;

std::array<double, kColumns> beamWeights(double offset) {
  std::array<double, kColumns> weights{};
  for (int i = 0; i < kColumns; ++i) {
    const double distance = (i - 1 - offset) / kBeamSigma;
    weights[i] = std::exp(-0.5 * distance * distance);
  }
  return weights;
}

}  // namespace

ScatterField::ScatterField(std::uint64_t seed) : seed_(seed), pool_(kPoolSize) {
  std::mt19937_64 random(mix(seed, 0x5ca7));
  std::normal_distribution<float> part(0.0f, std::numbers::sqrt2_v<float> / 2.0f);
  for (auto& number : pool_) {
    const float real = part(random);
    number = {real, part(random)};
  }
}

void ScatterField::read(double xMm, double yMm, std::vector<std::complex<float>>& field) const {
  const double u = xMm / kLatticeMm;
  const double v = yMm / kLatticeMm;
  const int iu = static_cast<int>(std::floor(u));
  const int iv = static_cast<int>(std::floor(v));
  const auto across = beamWeights(u - iu);
  const auto along = beamWeights(v - iv);
  double power = 0.0;
  for (const double a : along)
    for (const double b : across) power += a * b * a * b;
  const double scale = 1.0 / std::sqrt(power);

  std::fill(field.begin(), field.end(), std::complex<float>{});
  // Complex numbers are pairs of floats; plain float arithmetic lets the compiler use vector instructions.
  auto* sums = reinterpret_cast<float*>(field.data());
  const std::size_t floats = 2 * field.size();
  for (int j = 0; j < kColumns; ++j)
    for (int i = 0; i < kColumns; ++i) {
      const auto weight = static_cast<float>(scale * along[j] * across[i]);
      const auto start = mix(seed_, iu + i, iv + j) % (kPoolSize - field.size());
      const auto* column = reinterpret_cast<const float*>(pool_.data() + start);
      for (std::size_t n = 0; n < floats; ++n) sums[n] += weight * column[n];
    }
}

}  // namespace oct::simulator
