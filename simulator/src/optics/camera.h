// The line camera behind the spectrometer.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace oct::simulator {

// Turns light into counts of 12 bits, with shot noise and read noise. Used by several threads at once.
class Camera {
 public:
  static constexpr int largest_count = 4095;

  explicit Camera(std::uint64_t seed);

  // mean: light that mean_reading() has measured
  // exposure: number of the exposure; another number gives other noise
  // counts: receives the reading, 0 to largest_count
  void expose(std::span<const std::uint16_t> mean, std::uint64_t exposure,
              std::span<std::uint16_t> counts) const;

  // The reading without noise, in sixteenths of a count: far finer than the
  // noise and half as big as the light.
  // light: relative to the brightest light of the reference arm, one value per pixel
  static void mean_reading(std::span<const float> light, std::span<std::uint16_t> mean);

  // The reading without noise and rounding, for calibration.
  static float mean_count(float light);

 private:
  std::uint64_t seed_;
  std::vector<float> deviates_;
};

}  // namespace oct::simulator
