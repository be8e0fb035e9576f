#include "data/samples.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <utility>

namespace oct::app {
namespace {

constexpr double linear_share = 0.02;
// Percentiles of so many are right to a fiftieth of a percent; more would take as long as drawing the volume. A prime keeps out
// of step with the axes.
constexpr std::size_t enough_samples = 250'007;

template <class Wanted>
std::vector<float> select(std::span<const float> samples, Wanted wanted) {
  std::vector<float> result;
  result.reserve(samples.size());
  std::copy_if(samples.begin(), samples.end(), std::back_inserter(result), wanted);
  return result;
}

bool is_finite(float value) {
  return std::isfinite(value);
}

std::optional<ValueRange> range_of_finite(std::vector<float> finite, Shares shares) {
  if (finite.empty()) return std::nullopt;
  ValueRange range{quantile(finite, shares.lower), quantile(finite, shares.upper)};
  if (range.lower == range.upper) {
    const auto [lowest, highest] = std::minmax_element(finite.begin(), finite.end());
    range = {*lowest, *highest};
  }
  if (range.lower == range.upper) range.upper = range.lower + 1;
  return range;
}

}  // namespace

// Without a way out of the loop, so that it takes no longer than reading memory does.
bool all_finite(std::span<const float> samples) {
  constexpr std::uint32_t exponent = 0x7F800000U;
  std::uint32_t others = 0;
  for (const float sample : samples)
    others |= static_cast<std::uint32_t>((std::bit_cast<std::uint32_t>(sample) & exponent) == exponent);
  return others == 0;
}

std::size_t widen(ValueRange& range, std::span<const float> samples) {
  std::size_t count = 0;
  for (const float sample : samples) {
    if (!is_finite(sample)) continue;
    ++count;
    range.lower = std::min<double>(range.lower, sample);
    range.upper = std::max<double>(range.upper, sample);
  }
  return count;
}

double quantile(std::vector<float>& values, double share) {
  const double rank = share * static_cast<double>(values.size() - 1);
  const auto below = static_cast<std::ptrdiff_t>(rank);
  const auto position = values.begin() + below;
  std::nth_element(values.begin(), position, values.end());
  const double lower = *position;
  if (position + 1 == values.end()) return lower;
  const double upper = *std::min_element(position + 1, values.end());
  return lower + (upper - lower) * (rank - static_cast<double>(below));
}

std::optional<ValueRange> automatic_range(std::span<const float> samples, Shares shares) {
  return range_of_finite(select(samples, is_finite), shares);
}

std::size_t percentile_stride(std::size_t samples) {
  return samples / enough_samples + 1;
}

std::optional<ValueRange> quick_range(std::span<const float> samples, Shares shares) {
  const std::size_t stride = percentile_stride(samples.size());
  std::vector<float> finite;
  for (std::size_t i = 0; i < samples.size(); i += stride) {
    if (is_finite(samples[i])) finite.push_back(samples[i]);
  }
  return range_of_finite(std::move(finite), shares);
}

bool looks_linear(std::span<const float> samples, const ValueRange& range) {
  std::vector<float> positive = select(samples, [](float value) { return is_finite(value) && value > 0; });
  if (positive.empty() || range.upper <= 0) return false;
  return quantile(positive, 0.5) < linear_share * range.upper;
}

void to_decibels(std::span<float> samples) {
  for (float& sample : samples) {
    sample = sample > 0 ? 20 * std::log10(sample) : -std::numeric_limits<float>::infinity();
  }
}

void replace_non_finite(std::span<float> samples, const ValueRange& range) {
  for (float& sample : samples) {
    if (is_finite(sample)) continue;
    sample = static_cast<float>(sample > 0 ? range.upper : range.lower);
  }
}

std::size_t replace_non_finite(std::span<float> samples) {
  if (all_finite(samples)) return 0;
  ValueRange finite = no_range;
  const std::size_t count = samples.size() - widen(finite, samples);
  if (count < samples.size()) replace_non_finite(samples, finite);
  return count;
}

}  // namespace oct::app
