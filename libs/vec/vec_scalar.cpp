// Plain loops: what the other variants must give bit for bit, and what finishes their odd ends.
#include <bit>
#include <cstring>

#include "vec/constants.h"
#include "vec/routines.h"

namespace oct::vec {
namespace {

constexpr float infinity = __builtin_inff();

void copyScalar(float* destination, const float* source, std::size_t count) {
  if (count > 0) std::memcpy(destination, source, count * sizeof(float));
}

void cropCopyScalar(float* destination, const float* source, std::size_t aScans, std::size_t sourceSamples,
                    std::size_t keptSamples) {
  for (std::size_t aScan = 0; aScan < aScans; ++aScan) {
    copyScalar(destination + aScan * keptSamples, source + aScan * sourceSamples, keptSamples);
  }
}

Extremes extremesScalar(const float* values, std::size_t count) {
  Extremes result{infinity, -infinity};
  for (std::size_t i = 0; i < count; ++i) {
    if (values[i] < result.lowest) result.lowest = values[i];
    if (values[i] > result.highest) result.highest = values[i];
  }
  return result;
}

std::size_t countNotAboveScalar(const float* values, std::size_t count, float limit) {
  std::size_t result = 0;
  for (std::size_t i = 0; i < count; ++i) result += values[i] <= limit ? 1 : 0;
  return result;
}

void subtractScalar(float* destination, const std::uint16_t* counts, const float* background,
                    std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) destination[i] = static_cast<float>(counts[i]) - background[i];
}

void powersScalar(float* destination, const float* complexNumbers, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    const float re = complexNumbers[2 * i];
    const float im = complexNumbers[2 * i + 1];
    destination[i] = re * re + im * im;
  }
}

float decibelsOf(float power, float least) {
  float x = power > least ? power : least;
  x = x < largestFloat ? x : largestFloat;
  const auto bits = std::bit_cast<std::int32_t>(x);
  const std::int32_t exponent = (bits - rootHalfBits) >> 23;
  const float m = std::bit_cast<float>(bits - exponent * (1 << 23));
  const float s = (m - 1.0F) / (m + 1.0F);
  const float q = s * s;
  const float series = series1 + q * (series3 + q * (series5 + q * (series7 + q * series9)));
  return static_cast<float>(exponent) * perOctave + s * series;
}

void decibelsScalar(float* destination, const float* powers, std::size_t count, float least) {
  for (std::size_t i = 0; i < count; ++i) destination[i] = decibelsOf(powers[i], least);
}

void toUint16Scalar(std::uint16_t* destination, const float* values, std::size_t count, float factor,
                    float offset) {
  const float half = offset + 0.5F;
  for (std::size_t i = 0; i < count; ++i) {
    float value = values[i] * factor + half;
    value = value > 0.0F ? value : 0.0F;
    value = value < largestUint16 ? value : largestUint16;
    destination[i] = static_cast<std::uint16_t>(static_cast<std::int32_t>(value));
  }
}

}  // namespace

void setScalar(Routines& routines) {
  routines = {copyScalar,     cropCopyScalar, extremesScalar, countNotAboveScalar,
              subtractScalar, powersScalar,   decibelsScalar, toUint16Scalar};
}

}  // namespace oct::vec
