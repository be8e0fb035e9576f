#include "base/recording.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <stdexcept>

#include "base/noise.h"
#include "base/parallel.h"
#include "vec/vec.h"

namespace oct::simulator {
namespace {

// Depth samples are half of a spectrum length, which must be long enough to be resampled.
constexpr int least_depth = 4;
constexpr int largest_depth = 65536;

// Threads take this many samples or more; noise starts anew with each block.
constexpr std::size_t block_size = std::size_t{1} << 18;

// Normal deviates in the table, which a core's own cache holds.
constexpr std::size_t deviates_of_noise = std::size_t{1} << 14;

// Samples in a row that take a row of deviates, which starts at a random place of the table.
constexpr std::size_t samples_in_a_row = 256;

std::size_t volume_samples(const std::array<int, 3>& sizes, int volumes) {
  if (sizes[0] < least_depth || sizes[0] > largest_depth)
    throw std::invalid_argument("A recording needs 4 to 65536 depth samples. ");
  if (sizes[1] < 1 || sizes[2] < 1 || volumes < 1)
    throw std::invalid_argument("A recording needs at least one A-scan, one B-scan and one volume. ");
  // Factors of 31 bits: no product of two of them overflows.
  const std::uint64_t frame = static_cast<std::uint64_t>(sizes[0]) * static_cast<std::uint64_t>(sizes[1]);
  const std::uint64_t frames = static_cast<std::uint64_t>(sizes[2]) * static_cast<std::uint64_t>(volumes);
  constexpr std::uint64_t most = std::numeric_limits<std::ptrdiff_t>::max() / sizeof(float);
  if (frames > most / frame) throw std::invalid_argument("The recording is too large. ");
  return static_cast<std::size_t>(frame) * static_cast<std::size_t>(sizes[2]);
}

}  // namespace

Recording::Recording(const float* samples, std::array<int, 3> sizes, int volumes, double noise,
                     std::uint64_t seed)
    : sizes_(sizes), volume_samples_(volume_samples(sizes, volumes)), seed_(mix(seed, 0x9EC)) {
  if (!samples) throw std::invalid_argument("A recording needs samples. ");
  if (!(noise >= 0.0 && std::isfinite(noise)))
    throw std::invalid_argument("The noise of a recording must be finite and not negative. ");
  samples_.assign(samples, samples + volume_samples_ * static_cast<std::size_t>(volumes));
  if (!std::ranges::all_of(samples_, [](float sample) { return std::isfinite(sample); }))
    throw std::invalid_argument("The samples of a recording must be finite. ");
  if (noise == 0.0) return;
  std::mt19937_64 random(seed_);
  std::normal_distribution<float> normal(0.0F, static_cast<float>(noise));
  noise_.resize(deviates_of_noise + samples_in_a_row);
  for (auto& deviate : noise_) deviate = normal(random);
}

void Recording::play(std::uint64_t volume, std::span<float> samples, int workers) const {
  const float* const recorded =
      samples_.data() + volume % (samples_.size() / volume_samples_) * volume_samples_;
  const auto blocks = static_cast<int>((volume_samples_ + block_size - 1) / block_size);
  parallel_ranges(blocks, workers, [&](int begin, int end) {
    for (int block = begin; block < end; ++block) {
      const std::size_t first = static_cast<std::size_t>(block) * block_size;
      const std::size_t count = std::min(block_size, volume_samples_ - first);
      if (noise_.empty())
        vec::copy(samples.data() + first, recorded + first, count);
      else
        add_noise(mix(mix(seed_, volume), static_cast<std::uint64_t>(block)), recorded + first,
                  samples.subspan(first, count));
    }
  });
}

void Recording::add_noise(std::uint64_t exposure, const float* recorded, std::span<float> samples) const {
  FastRandom random(exposure);
  for (std::size_t first = 0; first < samples.size(); first += samples_in_a_row) {
    const float* const deviates = noise_.data() + random() % deviates_of_noise;
    const std::size_t count = std::min(samples_in_a_row, samples.size() - first);
    float* const sample = samples.data() + first;
    for (std::size_t i = 0; i < count; ++i) sample[i] = recorded[first + i] + deviates[i];
  }
}

}  // namespace oct::simulator
