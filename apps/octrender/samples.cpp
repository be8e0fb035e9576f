#include "samples.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>

#include "progress.h"

namespace oct::app {
namespace {

constexpr double kLowerShare = 0.01;
constexpr double kUpperShare = 0.995;
constexpr double kLinearShare = 0.02;

template <class Wanted>
std::vector<float> select(std::span<const float> samples, Wanted wanted) {
  std::vector<float> result;
  result.reserve(samples.size());
  std::copy_if(samples.begin(), samples.end(), std::back_inserter(result), wanted);
  return result;
}

bool isFinite(float value) {
  return std::isfinite(value);
}

}  // namespace

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

std::optional<ValueRange> automaticRange(std::span<const float> samples) {
  const Progress progress("finding the display range", samples.size());
  std::vector<float> finite = select(samples, isFinite);
  if (finite.empty()) return std::nullopt;
  ValueRange range{quantile(finite, kLowerShare), quantile(finite, kUpperShare)};
  if (range.lower == range.upper) {
    const auto [lowest, highest] = std::minmax_element(finite.begin(), finite.end());
    range = {*lowest, *highest};
  }
  if (range.lower == range.upper) range.upper = range.lower + 1;
  return range;
}

bool looksLinear(std::span<const float> samples, const ValueRange& range) {
  std::vector<float> positive = select(samples, [](float value) { return isFinite(value) && value > 0; });
  if (positive.empty() || range.upper <= 0) return false;
  return quantile(positive, 0.5) < kLinearShare * range.upper;
}

void toDecibels(std::span<float> samples) {
  for (float& sample : samples) {
    sample = sample > 0 ? 20 * std::log10(sample) : -std::numeric_limits<float>::infinity();
  }
}

void replaceNonFinite(std::span<float> samples, const ValueRange& range) {
  for (float& sample : samples) {
    if (isFinite(sample)) continue;
    sample = static_cast<float>(sample > 0 ? range.upper : range.lower);
  }
}

}  // namespace oct::app
