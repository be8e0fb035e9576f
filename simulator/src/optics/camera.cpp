#include "optics/camera.h"

#include <algorithm>
#include <cmath>
#include <random>

#include "base/noise.h"
#include "vec/vec.h"

namespace oct::simulator {
namespace {

// Counts for the brightest light of the reference arm: well over half the range, with room for fringes.
constexpr float reference_counts = 2400.0F;

// Counts without light, above zero so that noise is not cut off.
constexpr float dark_counts = 80.0F;

// Standard deviation of the electronics' noise, in counts.
constexpr float read_noise = 1.6F;

// Photoelectrons per count; their number is random, by the square root of itself.
constexpr float electrons_per_count = 60.0F;

// Normal deviates in the table.
constexpr std::size_t deviate_count = std::size_t{1} << 16;

// Pixels in a row that take a row of deviates, which starts at a random place of the table.
constexpr std::size_t run = 64;

// Steps of the reading without noise per count.
constexpr float mean_steps = 16.0F;

// The largest reading without noise; what is brighter counts as this.
constexpr int full_mean = 65535;

}  // namespace

Camera::Camera(std::uint64_t seed) : seed_(mix(seed, 0xCA3E)), deviates_(deviate_count + run) {
  std::mt19937_64 random(seed_);
  std::normal_distribution<float> normal;
  for (auto& deviate : deviates_) deviate = normal(random);
}

float Camera::mean_count(float light) {
  return dark_counts + reference_counts * light;
}

void Camera::mean_reading(std::span<const float> light, std::span<std::uint16_t> mean) {
  vec::to_uint16(mean.data(), light.data(), light.size(), mean_steps * reference_counts,
                 mean_steps * dark_counts);
}

void Camera::expose(std::span<const std::uint16_t> mean, std::uint64_t exposure,
                    std::span<std::uint16_t> counts) const {
  FastRandom random(mix(seed_, exposure));
  // The dark level carries no shot noise.
  constexpr float base_variance = read_noise * read_noise - dark_counts / electrons_per_count;
  for (std::size_t first = 0; first < counts.size(); first += run) {
    const float* const deviates = deviates_.data() + random() % deviate_count;
    const std::size_t size = std::min(run, counts.size() - first);
    for (std::size_t i = 0; i < size; ++i) {
      const float level = static_cast<float>(int{mean[first + i]}) * (1.0F / mean_steps);
      const float variance = level * (1.0F / electrons_per_count) + base_variance;
      const float noise = std::sqrt(std::max(variance, 0.0F));
      // Far too much light leaves no room for noise.
      const float count = level + (mean[first + i] < full_mean ? noise * deviates[i] : 0.0F) + 0.5F;
      const float cut = std::min(std::max(count, 0.0F), float{largest_count});
      counts[first + i] = static_cast<std::uint16_t>(static_cast<int>(cut));
    }
  }
}

}  // namespace oct::simulator
