// The middle of measured values, which a burst of other work on a shared machine does not move.
#pragma once

#include <algorithm>
#include <cstddef>
#include <vector>

namespace oct::benchmark_scene {

inline double median(std::vector<double> values) {
  if (values.empty()) return 0.0;
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// Values that come one by one.
class Median {
 public:
  void add(double value) { values_.push_back(value); }
  double value() const { return median(values_); }

 private:
  std::vector<double> values_;
};

}  // namespace oct::benchmark_scene
