#include "optics/camera.h"

#include "base/noise.h"
#include "vec/vec.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace oct::simulator {
namespace {

/// Counts for the brightest light of the reference arm: well over half the range, with room for fringes.
constexpr float kReferenceCounts = 2400.0f;

/// Counts without light, above zero so that noise is not cut off.
constexpr float kDarkCounts = 80.0f;

/// Standard deviation of the electronics' noise, in counts.
constexpr float kReadNoise = 1.6f;

/// Photoelectrons per count; their number is random, by the square root of itself.
constexpr float kElectronsPerCount = 60.0f;

/// Normal deviates in the table.
constexpr std::size_t kDeviates = std::size_t{1} << 16;

/// Pixels in a row that take a row of deviates, which starts at a random place of the table.
constexpr std::size_t kRun = 64;

/// Steps of the reading without noise per count.
constexpr float kMeanSteps = 16.0f;

/// The largest reading without noise; what is brighter counts as this.
constexpr int kFullMean = 65535;

}  // namespace

Camera::Camera(std::uint64_t seed) : seed_(mix(seed, 0xca3e)), deviates_(kDeviates + kRun) {
  std::mt19937_64 random(seed_);
  std::normal_distribution<float> normal;
  for (auto& deviate : deviates_) deviate = normal(random);
}

float Camera::meanCount(float light) {
  return kDarkCounts + kReferenceCounts * light;
}

void Camera::meanReading(std::span<const float> light, std::span<std::uint16_t> mean) {
  vec::toUint16(mean.data(), light.data(), light.size(), kMeanSteps * kReferenceCounts,
                kMeanSteps * kDarkCounts);
}

void Camera::expose(std::span<const std::uint16_t> mean, std::uint64_t exposure,
                    std::span<std::uint16_t> counts) const {
  FastRandom random(mix(seed_, exposure));
  // The dark level carries no shot noise.
  constexpr float kVariance = kReadNoise * kReadNoise - kDarkCounts / kElectronsPerCount;
  for (std::size_t first = 0; first < counts.size(); first += kRun) {
    const float* const deviates = deviates_.data() + random() % kDeviates;
    const std::size_t size = std::min(kRun, counts.size() - first);
    for (std::size_t i = 0; i < size; ++i) {
      const float level = static_cast<float>(int{mean[first + i]}) * (1.0f / kMeanSteps);
      const float variance = level * (1.0f / kElectronsPerCount) + kVariance;
      const float noise = std::sqrt(std::max(variance, 0.0f));
      // Far too much light leaves no room for noise.
      const float count = level + (mean[first + i] < kFullMean ? noise * deviates[i] : 0.0f) + 0.5f;
      const float cut = std::min(std::max(count, 0.0f), float{kLargestCount});
      counts[first + i] = static_cast<std::uint16_t>(static_cast<int>(cut));
    }
  }
}

}  // namespace oct::simulator
