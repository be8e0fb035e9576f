// Four floats at a time.
#include <xmmintrin.h>

#include "vec/line_stream.h"
#include "vec/routines.h"

namespace oct::vec {
namespace {

constexpr std::size_t width = 4;

struct Line {
  static void store(float* destination, const float* source) {
    for (std::size_t i = 0; i < lineFloats; i += width)
      _mm_stream_ps(destination + i, _mm_loadu_ps(source + i));
  }
  static void finish() { _mm_sfence(); }
};

void copySse(float* destination, const float* source, std::size_t count) {
  copyBlock<Line>(destination, source, count, streamedBytes);
}

// The instructions give their second operand where one of them is NaN: the result so far.
Extremes extremesSse(const float* values, std::size_t count) {
  const float infinity = __builtin_inff();
  __m128 low = _mm_set1_ps(infinity);
  __m128 high = _mm_set1_ps(-infinity);
  __m128 low2 = low;
  __m128 high2 = high;
  std::size_t i = 0;
  for (; i + 2 * width <= count; i += 2 * width) {
    const __m128 first = _mm_loadu_ps(values + i);
    const __m128 second = _mm_loadu_ps(values + i + width);
    low = _mm_min_ps(first, low);
    high = _mm_max_ps(first, high);
    low2 = _mm_min_ps(second, low2);
    high2 = _mm_max_ps(second, high2);
  }
  float lows[width];
  float highs[width];
  _mm_storeu_ps(lows, _mm_min_ps(low, low2));
  _mm_storeu_ps(highs, _mm_max_ps(high, high2));
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

std::size_t countNotAboveSse(const float* values, std::size_t count, float limit) {
  const __m128 limits = _mm_set1_ps(limit);
  const __m128 one = _mm_set1_ps(1.0F);
  std::size_t result = 0;
  std::size_t i = 0;
  while (i + 2 * width <= count) {
    const std::size_t left = (count - i) / (2 * width);
    const std::size_t end = i + 2 * width * (left < countable ? left : countable);
    __m128 first = _mm_setzero_ps();
    __m128 second = first;
    for (; i < end; i += 2 * width) {
      first = _mm_add_ps(first, _mm_and_ps(_mm_cmple_ps(_mm_loadu_ps(values + i), limits), one));
      second = _mm_add_ps(second, _mm_and_ps(_mm_cmple_ps(_mm_loadu_ps(values + i + width), limits), one));
    }
    float counts[2 * width];
    _mm_storeu_ps(counts, first);
    _mm_storeu_ps(counts + width, second);
    for (const float each : counts) result += static_cast<std::size_t>(each);
  }
  for (; i < count; ++i) result += values[i] <= limit ? 1 : 0;
  return result;
}

void powersSse(float* destination, const float* complexNumbers, std::size_t count) {
  std::size_t i = 0;
  for (; i + width <= count; i += width) {
    const __m128 first = _mm_loadu_ps(complexNumbers + 2 * i);
    const __m128 second = _mm_loadu_ps(complexNumbers + 2 * i + width);
    const __m128 re = _mm_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0));
    const __m128 im = _mm_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1));
    _mm_storeu_ps(destination + i, _mm_add_ps(_mm_mul_ps(re, re), _mm_mul_ps(im, im)));
  }
  for (; i < count; ++i) {
    const float re = complexNumbers[2 * i];
    const float im = complexNumbers[2 * i + 1];
    destination[i] = re * re + im * im;
  }
}

}  // namespace

void setSse(Routines& routines) {
  routines.copy = copySse;
  routines.extremes = extremesSse;
  routines.countNotAbove = countNotAboveSse;
  routines.powers = powersSse;
}

}  // namespace oct::vec
