// Volumes that were recorded before.
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <vector>

namespace oct::simulator {

// One or more processed volumes of one size, and the noise that each playing adds to them.
class Recording {
 public:
  // Copies the samples. Throws std::invalid_argument if the sizes, the samples or the noise make no sense.
  // samples: the volumes one after the other, each laid out as Data
  // sizes: depth samples, A-scans, B-scans
  // noise: standard deviation, in the unit of the samples
  Recording(const float* samples, std::array<int, 3> sizes, int volumes, double noise, std::uint64_t seed);

  const std::array<int, 3>& sizes() const { return sizes_; }

  // Writes the volume whose turn it is. The same number gives the same samples.
  // volume: its number; after the last recorded volume comes the first
  // samples: receives them; as many as a volume has
  // workers: number of threads, 0 for one per core; the volume does not depend on it
  void play(std::uint64_t volume, std::span<float> samples, int workers) const;

 private:
  void add_noise(std::uint64_t exposure, const float* recorded, std::span<float> samples) const;

  std::array<int, 3> sizes_;
  std::size_t volume_samples_;
  std::vector<float> samples_;
  std::uint64_t seed_;
  std::vector<float> noise_;  // deviates to draw from; empty: the samples are played as they are
};

}  // namespace oct::simulator
