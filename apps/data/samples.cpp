#include "data/samples.h"

#include <algorithm>
#include <cmath>
#include <iterator>
#include <limits>
#include <utility>

namespace oct::app {
namespace {

constexpr double kLinearShare = 0.02;
constexpr std::size_t kEnoughSamples = 4'000'003;  // a prime keeps out of step with the axes

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

std::optional<ValueRange> rangeOfFinite(std::vector<float> finite, Shares shares) {
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

std::optional<ValueRange> automaticRange(std::span<const float> samples, Shares shares) {
  return rangeOfFinite(select(samples, isFinite), shares);
}

std::optional<ValueRange> quickRange(std::span<const float> samples, Shares shares) {
  const std::size_t stride = samples.size() / kEnoughSamples + 1;
  std::vector<float> finite;
  for (std::size_t i = 0; i < samples.size(); i += stride) {
    if (isFinite(samples[i])) finite.push_back(samples[i]);
  }
  return rangeOfFinite(std::move(finite), shares);
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
