#include "camera.h"

#include "noise.h"

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

}  // namespace

Camera::Camera(std::uint64_t seed) : seed_(mix(seed, 0xca3e)), deviates_(std::size_t{1} << 16) {
  std::mt19937_64 random(seed_);
  std::normal_distribution<float> normal;
  for (auto& deviate : deviates_) deviate = normal(random);
}

float Camera::meanCount(float light) { return kDarkCounts + kReferenceCounts * light; }

void Camera::expose(std::span<const float> light, std::uint64_t exposure,
                    std::span<std::uint16_t> counts) const {
  FastRandom random(mix(seed_, exposure));
  std::uint64_t bits = 0;
  for (std::size_t pixel = 0; pixel < counts.size(); ++pixel) {
    // One draw gives four places in the table of normal deviates.
    bits = pixel % 4 == 0 ? random() : bits >> 16;
    const float deviate = deviates_[bits & 0xffff];
    const float photoCounts = kReferenceCounts * std::max(light[pixel], 0.0f);
    const float noise = std::sqrt(photoCounts / kElectronsPerCount + kReadNoise * kReadNoise);
    const float count = kDarkCounts + photoCounts + noise * deviate;
    counts[pixel] = static_cast<std::uint16_t>(std::clamp(count + 0.5f, 0.0f, float{kLargestCount}));
  }
}

}  // namespace oct::simulator
