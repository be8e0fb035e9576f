// Bisection in the order of floats: what takes longest, counting, goes through the array in one direction.
#include <bit>
#include <cmath>
#include <limits>

#include "vec/vec.h"

namespace oct::vec {
namespace {

// Integers in the order of their floats: those of negative numbers run backwards.
std::int64_t key_of(float value) {
  const auto bits = std::bit_cast<std::int32_t>(value);
  return bits >= 0 ? bits : std::int64_t{std::numeric_limits<std::int32_t>::min()} - bits;
}

float value_of(std::int64_t key) {
  return key >= 0 ? std::bit_cast<float>(static_cast<std::int32_t>(key)) : -value_of(-key);
}

}  // namespace

float quantile(const float* values, std::size_t count, double share) {
  const std::size_t numbers = count_not_above(values, count, std::numeric_limits<float>::infinity());
  if (numbers == 0) return std::numeric_limits<float>::quiet_NaN();
  const auto rank = static_cast<std::size_t>(share * static_cast<double>(numbers - 1));
  const Extremes ends = extremes(values, count);
  std::int64_t low = key_of(ends.lowest);
  std::int64_t high = key_of(ends.highest);
  while (low < high) {
    const std::int64_t middle = low + (high - low) / 2;
    if (count_not_above(values, count, value_of(middle)) > rank) {
      high = middle;
    } else {
      low = middle + 1;
    }
  }
  return value_of(low);
}

}  // namespace oct::vec
