// Reproducible randomness: hashes, a fast generator, and smooth noise in space.
#pragma once

#include <array>
#include <cstdint>

namespace oct::simulator {

// Mixes a number with a seed into 64 bits without visible pattern.
inline std::uint64_t mix(std::uint64_t seed, std::uint64_t value) {
  std::uint64_t h = seed ^ (value * 0x9E3779B97F4A7C15ULL + 0xD1B54A32D192ED03ULL);
  h = (h ^ (h >> 30)) * 0xBF58476D1CE4E5B9ULL;
  h = (h ^ (h >> 27)) * 0x94D049BB133111EBULL;
  return h ^ (h >> 31);
}

// Mixes the coordinates of a lattice point.
inline std::uint64_t mix(std::uint64_t seed, int ix, int iy) {
  return mix(seed, (static_cast<std::uint64_t>(static_cast<std::uint32_t>(ix)) << 32) |
                       static_cast<std::uint32_t>(iy));
}

// The hash as a number from 0 (inclusive) to 1 (exclusive).
inline double unit_interval(std::uint64_t hash) {
  return static_cast<double>(hash >> 11) * 0x1p-53;
}

// The hash as a number from -1 to 1.
inline double signed_unit(std::uint64_t hash) {
  return 2.0 * unit_interval(hash) - 1.0;
}

// A small, fast generator of 64 random bits; one per A-scan.
class FastRandom {
 public:
  explicit FastRandom(std::uint64_t seed) : state_(seed | 1U) {}

  std::uint64_t operator()() {
    state_ ^= state_ << 13;
    state_ ^= state_ >> 7;
    state_ ^= state_ << 17;
    return state_ * 0x2545F4914F6CDD1DULL;
  }

 private:
  std::uint64_t state_;
};

// Smooth noise over the lateral plane, -1 to 1, that varies over about one unit of its arguments.
double smooth_noise(std::uint64_t seed, double x, double y);

// Smooth noise along depth at one lateral position, -1 to 1; continuous from one position to the next.
class NoiseColumn {
 public:
  // spacing_mm: length over which the noise varies, laterally and in depth
  NoiseColumn(std::uint64_t seed, double x_mm, double y_mm, double spacing_mm);

  // depth_mm: depth; beyond 63 spacings, and above 0, the noise stays constant
  double operator()(double depth_mm) const;

 private:
  std::array<float, 64> nodes_;
  double per_mm_;
};

}  // namespace oct::simulator
