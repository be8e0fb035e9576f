// Plain loops: what the other variants must give bit for bit, and what finishes their odd ends.
#include <bit>
#include <cstring>

#include "vec/constants.h"
#include "vec/routines.h"

namespace oct::vec {
namespace {

constexpr float infinity = __builtin_inff();

void copy_scalar(float* destination, const float* source, std::size_t count) {
  if (count > 0) std::memcpy(destination, source, count * sizeof(float));
}

void crop_copy_scalar(float* destination, const float* source, std::size_t a_scans,
                      std::size_t source_samples, std::size_t kept_samples, std::size_t) {
  for (std::size_t a_scan = 0; a_scan < a_scans; ++a_scan) {
    copy_scalar(destination + a_scan * kept_samples, source + a_scan * source_samples, kept_samples);
  }
}

Extremes extremes_scalar(const float* values, std::size_t count) {
  Extremes result{infinity, -infinity};
  for (std::size_t i = 0; i < count; ++i) {
    if (values[i] < result.lowest) result.lowest = values[i];
    if (values[i] > result.highest) result.highest = values[i];
  }
  return result;
}

void raise_scalar(float* maxima, const float* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) maxima[i] = values[i] > maxima[i] ? values[i] : maxima[i];
}

std::size_t count_not_above_scalar(const float* values, std::size_t count, float limit) {
  std::size_t result = 0;
  for (std::size_t i = 0; i < count; ++i) result += values[i] <= limit ? 1 : 0;
  return result;
}

void subtract_scalar(float* destination, const std::uint16_t* counts, const float* background,
                     std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) destination[i] = static_cast<float>(counts[i]) - background[i];
}

void powers_scalar(float* destination, const float* complex_numbers, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const float re = complex_numbers[2 * i];
    const float im = complex_numbers[2 * i + 1];
    destination[i] = re * re + im * im;
  }
}

float decibels_of(float power, float least) {
  float x = power > least ? power : least;
  x = x < largest_float ? x : largest_float;
  const auto bits = std::bit_cast<std::int32_t>(x);
  const std::int32_t exponent = (bits - root_half_bits) >> 23;
  const float m = std::bit_cast<float>(bits - exponent * (1 << 23));
  const float s = (m - 1.0F) / (m + 1.0F);
  const float q = s * s;
  const float series = series1 + q * (series3 + q * (series5 + q * (series7 + q * series9)));
  return static_cast<float>(exponent) * per_octave + s * series;
}

void decibels_scalar(float* destination, const float* powers, std::size_t count, float least) {
  for (std::size_t i = 0; i < count; ++i) destination[i] = decibels_of(powers[i], least);
}

void to_uint16_scalar(std::uint16_t* destination, const float* values, std::size_t count, float factor,
                      float offset) {
  const float half = offset + 0.5F;
  for (std::size_t i = 0; i < count; ++i) {
    float value = values[i] * factor + half;
    value = value > 0.0F ? value : 0.0F;
    value = value < largest_uint16 ? value : largest_uint16;
    destination[i] = static_cast<std::uint16_t>(static_cast<std::int32_t>(value));
  }
}

std::uint16_t half_of(float value) {
  constexpr std::uint32_t infinite = 0x7F800000U;
  constexpr std::uint32_t above_largest = 0x477FF000U;    // 65520
  constexpr std::uint32_t least_normal = 0x38800000U;     // 2^-14
  constexpr std::uint32_t exponents_apart = 0x38000000U;  // 127 - 15
  const auto bits = std::bit_cast<std::uint32_t>(value);
  const std::uint32_t sign = bits >> 16U & 0x8000U;
  const std::uint32_t size = bits & 0x7FFFFFFFU;
  std::uint32_t half = 0;
  if (size > infinite) {
    half = 0x7E00U | (size >> 13U & 0x3FFU);
  } else if (size >= above_largest) {
    half = 0x7C00U;
  } else if (size >= least_normal) {
    half = (size - exponents_apart + 0xFFFU + (size >> 13U & 1U)) >> 13U;
  } else {
    // Beside 0.5 a float has the steps of the smallest numbers of 16 bits, and the addition rounds.
    const float sum = std::bit_cast<float>(size) + 0.5F;
    half = std::bit_cast<std::uint32_t>(sum) - std::bit_cast<std::uint32_t>(0.5F);
  }
  return static_cast<std::uint16_t>(sign | half);
}

void to_half_scalar(std::uint16_t* destination, const float* values, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) destination[i] = half_of(values[i]);
}

}  // namespace

void set_scalar(Routines& routines) {
  routines = {copy_scalar,     crop_copy_scalar, extremes_scalar, raise_scalar,     count_not_above_scalar,
              subtract_scalar, powers_scalar,    decibels_scalar, to_uint16_scalar, to_half_scalar};
}

}  // namespace oct::vec
