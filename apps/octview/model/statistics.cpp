#include "octview/model/statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace oct::app {
namespace {

constexpr std::size_t most_bins = 512;
constexpr double shown_share = 0.0005;  // of the samples may lie outside of the domain at either end
constexpr std::size_t block = std::size_t{1} << 20;

struct Survey {
  ValueRange extremes{std::numeric_limits<double>::infinity(), -std::numeric_limits<double>::infinity()};
  bool integers = true;
};

bool counts(float sample, double lowest_that_counts) {
  return std::isfinite(sample) && sample >= lowest_that_counts;
}

Survey survey_of(std::span<const float> samples, double above) {
  float lower = std::numeric_limits<float>::infinity();
  float upper = -lower;
  bool integers = true;
  for (const float sample : samples) {
    if (!std::isfinite(sample) || sample <= above) continue;
    lower = std::min(lower, sample);
    upper = std::max(upper, sample);
    integers = integers && sample == std::trunc(sample);
  }
  return {{lower, upper}, integers};
}

std::vector<float> some_in_order(std::span<const float> samples, double lowest) {
  const std::size_t stride = percentile_stride(samples.size());
  std::vector<float> ordered;
  ordered.reserve(samples.size() / stride + 1);
  for (std::size_t i = 0; i < samples.size(); i += stride) {
    if (counts(samples[i], lowest)) ordered.push_back(samples[i]);
  }
  std::ranges::sort(ordered);
  return ordered;
}

// The domain and the number of bins.
void lay_out(Statistics& statistics, bool integers) {
  ValueRange& domain = statistics.domain;
  const ValueRange& extremes = statistics.extremes;
  domain = {statistics.percentile(shown_share), statistics.percentile(1 - shown_share)};
  const double margin = (domain.upper - domain.lower) / 10;
  domain = {std::max(extremes.lower, domain.lower - margin), std::min(extremes.upper, domain.upper + margin)};
  if (!(domain.lower < domain.upper)) domain = extremes;
  if (!(domain.lower < domain.upper)) domain = {domain.lower - 0.5, domain.upper + 0.5};
  std::size_t bins = most_bins;
  if (integers && domain.upper - domain.lower < most_bins) {
    domain = {std::floor(domain.lower) - 0.5, std::ceil(domain.upper) + 0.5};
    if (extremes.lower == extremes.upper) domain = {extremes.lower - 0.5, extremes.upper + 0.5};
    bins = static_cast<std::size_t>(std::lround(domain.upper - domain.lower));
  }
  statistics.histogram.assign(bins, 0);
}

void count_samples(std::span<const float> samples, double lowest, Statistics& statistics) {
  const auto bins = static_cast<double>(statistics.histogram.size());
  const double scale = bins / (statistics.domain.upper - statistics.domain.lower);
  for (const float sample : samples) {
    if (!counts(sample, lowest)) continue;
    ++statistics.count;
    const double bin = (sample - statistics.domain.lower) * scale;
    if (sample < statistics.domain.lower) {
      ++statistics.below;
    } else if (sample > statistics.domain.upper) {
      ++statistics.above;
    } else {
      ++statistics.histogram[static_cast<std::size_t>(std::min(bin, bins - 1))];
    }
  }
}

}  // namespace

double Statistics::percentile(double share) const {
  const double rank = std::clamp(share, 0.0, 1.0) * static_cast<double>(ordered.size() - 1);
  const auto below_rank = static_cast<std::size_t>(rank);
  const double lower = ordered[below_rank];
  const double upper = ordered[std::min(below_rank + 1, ordered.size() - 1)];
  return lower + (upper - lower) * (rank - static_cast<double>(below_rank));
}

double Statistics::share_below(double value) const {
  const auto at = std::ranges::lower_bound(ordered, value, {}, [](float sample) { return double{sample}; });
  return static_cast<double>(at - ordered.begin()) / static_cast<double>(ordered.size());
}

ValueRange Statistics::range(const Shares& shares) const {
  ValueRange range{percentile(shares.lower), percentile(shares.upper)};
  if (range.lower == range.upper) range = extremes;
  if (range.lower == range.upper) range.upper = range.lower + 1;
  return range;
}

std::optional<Statistics> statistics_of(std::span<const float> samples, std::size_t not_finite,
                                        const ProgressFunction& progress) {
  constexpr double infinity = std::numeric_limits<double>::infinity();
  const std::size_t work = 2 * samples.size();
  std::size_t done = 0;
  const auto in_blocks = [&](auto action) {
    for (std::size_t begin = 0; begin < samples.size(); begin += block) {
      const std::size_t length = std::min(block, samples.size() - begin);
      action(samples.subspan(begin, length));
      progress(done += length, work);
    }
  };
  const auto survey_above = [&](double above) {
    Survey whole;
    in_blocks([&](std::span<const float> part) {
      const Survey survey = survey_of(part, above);
      whole.extremes.lower = std::min(whole.extremes.lower, survey.extremes.lower);
      whole.extremes.upper = std::max(whole.extremes.upper, survey.extremes.upper);
      whole.integers = whole.integers && survey.integers;
    });
    return whole;
  };
  Survey survey = survey_above(-infinity);
  if (survey.extremes.lower > survey.extremes.upper) return std::nullopt;
  if (not_finite > 0) {
    done = 0;
    const Survey rest = survey_above(survey.extremes.lower);
    if (rest.extremes.lower <= rest.extremes.upper) survey = rest;
  }
  Statistics statistics;
  statistics.extremes = survey.extremes;
  statistics.ordered = some_in_order(samples, survey.extremes.lower);
  if (statistics.ordered.empty()) statistics.ordered = {static_cast<float>(survey.extremes.lower)};
  lay_out(statistics, survey.integers);
  in_blocks([&](std::span<const float> part) { count_samples(part, survey.extremes.lower, statistics); });
  return statistics;
}

}  // namespace oct::app
