// What the values of a volume are: extremes, counts, percentiles.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "data/progress_function.h"
#include "data/samples.h"

namespace oct::app {

struct Statistics {
  ValueRange extremes;    // the lowest and the highest finite sample
  std::size_t count = 0;  // finite samples
  ValueRange domain;      // of the histogram: where all but a few samples are
  std::vector<std::uint64_t>
      histogram;          // exact counts in bins of equal width; one per value where those are integers
  std::size_t below = 0;  // the domain
  std::size_t above = 0;
  std::vector<float> ordered;  // some of the samples, by value

  // As quick_range finds it, from some of the samples.
  double percentile(double share) const;
  double share_below(double value) const;
  ValueRange range(const Shares& shares) const;  // never empty
};

// Nothing where no sample is finite. not_finite: so many of the lowest samples stand for what was not finite, and are left out.
// Throws what the progress function throws.
std::optional<Statistics> statistics_of(std::span<const float> samples, std::size_t not_finite,
                                        const ProgressFunction& progress = no_progress);

}  // namespace oct::app
