// Arithmetic on samples before they are drawn.
#pragma once

#include <cstddef>
#include <limits>
#include <optional>
#include <span>
#include <vector>

namespace oct::app {

struct ValueRange {
  double lower = 0;
  double upper = 1;

  bool operator==(const ValueRange&) const = default;
};

// Of nothing: any sample widens it to itself.
constexpr ValueRange no_range{std::numeric_limits<double>::infinity(),
                              -std::numeric_limits<double>::infinity()};

bool all_finite(std::span<const float> samples);

// So that every finite sample lies in the range. Returns how many there were.
std::size_t widen(ValueRange& range, std::span<const float> samples);

// The value below which this share (0 to 1) of the values lies, linear between neighbours in rank. Reorders
// the values, of which there must be at least one.
double quantile(std::vector<float>& values, double share);

// Parts of the samples that lie below the two ends of an automatic range.
struct Shares {
  double lower = 0;
  double upper = 1;

  bool operator==(const Shares&) const = default;
};

// For images: speckle has few very bright samples, and more than one percent of dark ones carry no tissue.
constexpr Shares image_shares{0.01, 0.995};

// The percentiles of the finite samples. Where those are equal, from the lowest to the highest; where all
// samples are equal, one unit upwards. Nothing when no sample is finite.
std::optional<ValueRange> automatic_range(std::span<const float> samples, Shares shares);

// Every which sample is enough for percentiles of so many.
std::size_t percentile_stride(std::size_t samples);

// The same from every nth sample where there are millions.
std::optional<ValueRange> quick_range(std::span<const float> samples, Shares shares);

// True when half of the positive samples lie in the lowest fiftieth of the range: linear reflectivity spans
// some 50 dB, of which such a picture shows the brightest part only.
bool looks_linear(std::span<const float> samples, const ValueRange& range);

// 20 log10 of every sample; what has no logarithm becomes minus infinity.
void to_decibels(std::span<float> samples);

// Shaders may do anything with NaN and infinity. NaN and minus infinity become the lower end of the range,
// infinity the upper.
void replace_non_finite(std::span<float> samples, const ValueRange& range);

// The same by the lowest and the highest finite sample, whatever range is shown later. Returns how many there were; without
// any finite sample nothing is replaced.
std::size_t replace_non_finite(std::span<float> samples);

}  // namespace oct::app
