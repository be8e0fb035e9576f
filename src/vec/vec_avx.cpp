// Eight floats at a time; integers still by four.
#include <immintrin.h>

#include "vec/constants.h"
#include "vec/line_stream.h"
#include "vec/routines.h"
#include "vec/tail.h"

namespace oct::vec {
namespace {

constexpr std::size_t width = 8;

struct Line {
  static void store(float* destination, const float* source) {
    for (std::size_t i = 0; i < lineFloats; i += width)
      _mm256_stream_ps(destination + i, _mm256_loadu_ps(source + i));
  }
  static void finish() { _mm_sfence(); }
};

void copyAvx(float* destination, const float* source, std::size_t count) {
  copyBlock<Line>(destination, source, count, streamedBytes);
}

void cropCopyAvx(float* destination, const float* source, std::size_t aScans, std::size_t sourceSamples,
                 std::size_t keptSamples) {
  copyCropped<Line>(destination, source, aScans, sourceSamples, keptSamples, streamedBytes);
}

// The instructions give their second operand where one of them is NaN: the result so far.
Extremes extremesAvx(const float* values, std::size_t count) {
  const float infinity = __builtin_inff();
  __m256 low = _mm256_set1_ps(infinity);
  __m256 high = _mm256_set1_ps(-infinity);
  __m256 low2 = low;
  __m256 high2 = high;
  std::size_t i = 0;
  for (; i + 2 * width <= count; i += 2 * width) {
    const __m256 first = _mm256_loadu_ps(values + i);
    const __m256 second = _mm256_loadu_ps(values + i + width);
    low = _mm256_min_ps(first, low);
    high = _mm256_max_ps(first, high);
    low2 = _mm256_min_ps(second, low2);
    high2 = _mm256_max_ps(second, high2);
  }
  float lows[width];
  float highs[width];
  _mm256_storeu_ps(lows, _mm256_min_ps(low, low2));
  _mm256_storeu_ps(highs, _mm256_max_ps(high, high2));
  Extremes result{infinity, -infinity};
  for (std::size_t lane = 0; lane < width; ++lane) {
    if (lows[lane] < result.lowest) result.lowest = lows[lane];
    if (highs[lane] > result.highest) result.highest = highs[lane];
  }
  for (; i < count; ++i) {
    if (values[i] < result.lowest) result.lowest = values[i];
    if (values[i] > result.highest) result.highest = values[i];
  }
  return result;
}

// Counts as floats, which are exact up to 2^24 in every lane; so many rounds stay far below.
constexpr std::size_t countable = std::size_t{1} << 16U;

std::size_t countNotAboveAvx(const float* values, std::size_t count, float limit) {
  const __m256 limits = _mm256_set1_ps(limit);
  const __m256 one = _mm256_set1_ps(1.0F);
  std::size_t result = 0;
  std::size_t i = 0;
  while (i + 2 * width <= count) {
    const std::size_t left = (count - i) / (2 * width);
    const std::size_t end = i + 2 * width * (left < countable ? left : countable);
    __m256 first = _mm256_setzero_ps();
    __m256 second = first;
    for (; i < end; i += 2 * width) {
      first = _mm256_add_ps(
          first, _mm256_and_ps(_mm256_cmp_ps(_mm256_loadu_ps(values + i), limits, _CMP_LE_OQ), one));
      second = _mm256_add_ps(
          second, _mm256_and_ps(_mm256_cmp_ps(_mm256_loadu_ps(values + i + width), limits, _CMP_LE_OQ), one));
    }
    float counts[2 * width];
    _mm256_storeu_ps(counts, first);
    _mm256_storeu_ps(counts + width, second);
    for (const float each : counts) result += static_cast<std::size_t>(each);
  }
  for (; i < count; ++i) result += values[i] <= limit ? 1 : 0;
  return result;
}

__m256i joined(__m128i low, __m128i high) {
  return _mm256_insertf128_si256(_mm256_castsi128_si256(low), high, 1);
}

void powersAvx(float* destination, const float* complexNumbers, std::size_t count) {
  std::size_t i = 0;
  for (; i + width <= count; i += width) {
    const __m256 first = _mm256_loadu_ps(complexNumbers + 2 * i);
    const __m256 second = _mm256_loadu_ps(complexNumbers + 2 * i + width);
    // Shuffling stays within the halves: bring the halves that belong together side by side first.
    const __m256 lower = _mm256_permute2f128_ps(first, second, 0x20);
    const __m256 upper = _mm256_permute2f128_ps(first, second, 0x31);
    const __m256 re = _mm256_shuffle_ps(lower, upper, _MM_SHUFFLE(2, 0, 2, 0));
    const __m256 im = _mm256_shuffle_ps(lower, upper, _MM_SHUFFLE(3, 1, 3, 1));
    _mm256_storeu_ps(destination + i, _mm256_add_ps(_mm256_mul_ps(re, re), _mm256_mul_ps(im, im)));
  }
  for (; i < count; ++i) {
    const float re = complexNumbers[2 * i];
    const float im = complexNumbers[2 * i + 1];
    destination[i] = re * re + im * im;
  }
}

struct Halves {
  __m128i low;
  __m128i high;
};

Halves halvesOf(__m256i wide) {
  return {_mm256_castsi256_si128(wide), _mm256_extractf128_si256(wide, 1)};
}

__m128i exponentOf(__m128i bits) {
  return _mm_srai_epi32(_mm_sub_epi32(bits, _mm_set1_epi32(rootHalfBits)), 23);
}

__m128i mantissaOf(__m128i bits, __m128i exponent) {
  return _mm_sub_epi32(bits, _mm_slli_epi32(exponent, 23));
}

__m256 decibelsOf(__m256 power, __m256 least) {
  // The maximum's second operand stands in for NaN.
  const __m256 x = _mm256_min_ps(_mm256_max_ps(power, least), _mm256_set1_ps(largestFloat));
  const Halves bits = halvesOf(_mm256_castps_si256(x));
  const __m128i low = exponentOf(bits.low);
  const __m128i high = exponentOf(bits.high);
  const __m256 m = _mm256_castsi256_ps(joined(mantissaOf(bits.low, low), mantissaOf(bits.high, high)));
  const __m256 one = _mm256_set1_ps(1.0F);
  const __m256 s = _mm256_div_ps(_mm256_sub_ps(m, one), _mm256_add_ps(m, one));
  const __m256 q = _mm256_mul_ps(s, s);
  __m256 series = _mm256_add_ps(_mm256_set1_ps(series7), _mm256_mul_ps(q, _mm256_set1_ps(series9)));
  series = _mm256_add_ps(_mm256_set1_ps(series5), _mm256_mul_ps(q, series));
  series = _mm256_add_ps(_mm256_set1_ps(series3), _mm256_mul_ps(q, series));
  series = _mm256_add_ps(_mm256_set1_ps(series1), _mm256_mul_ps(q, series));
  return _mm256_add_ps(_mm256_mul_ps(_mm256_cvtepi32_ps(joined(low, high)), _mm256_set1_ps(perOctave)),
                       _mm256_mul_ps(s, series));
}

void decibelsAvx(float* destination, const float* powers, std::size_t count, float least) {
  const __m256 floor = _mm256_set1_ps(least);
  const auto kernel = [&](float* to, const float* from) {
    _mm256_storeu_ps(to, decibelsOf(_mm256_loadu_ps(from), floor));
  };
  std::size_t i = 0;
  for (; i + width <= count; i += width) kernel(destination + i, powers + i);
  forTail(destination + i, powers + i, count - i, width, kernel);
}

void toUint16Avx(std::uint16_t* destination, const float* values, std::size_t count, float factor,
                 float offset) {
  const __m256 factors = _mm256_set1_ps(factor);
  const __m256 offsets = _mm256_set1_ps(offset + 0.5F);
  const auto kernel = [&](std::uint16_t* to, const float* from) {
    const __m256 value = _mm256_add_ps(_mm256_mul_ps(_mm256_loadu_ps(from), factors), offsets);
    // Packing cuts what is below 0, and so NaN, which the minimum lets pass as its second operand.
    const __m256i integers = _mm256_cvttps_epi32(_mm256_min_ps(_mm256_set1_ps(largestUint16), value));
    const Halves whole = halvesOf(integers);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_packus_epi32(whole.low, whole.high));
  };
  std::size_t i = 0;
  for (; i + width <= count; i += width) kernel(destination + i, values + i);
  forTail(destination + i, values + i, count - i, width, kernel);
}

}  // namespace

void setAvx(Routines& routines) {
  routines.copy = copyAvx;
  routines.cropCopy = cropCopyAvx;
  routines.extremes = extremesAvx;
  routines.countNotAbove = countNotAboveAvx;
  routines.powers = powersAvx;
  routines.decibels = decibelsAvx;
  routines.toUint16 = toUint16Avx;
}

}  // namespace oct::vec
