// Eight floats at a time; integers still by four.
#include <immintrin.h>

#include "vec/constants.h"
#include "vec/line_stream.h"
#include "vec/routines.h"
#include "vec/wide.h"

namespace oct::vec {
namespace {

struct Halves {
  __m128i low;
  __m128i high;
};

Halves halves_of(__m256i whole) {
  return {_mm256_castsi256_si128(whole), _mm256_extractf128_si256(whole, 1)};
}

__m256i joined(Halves halves) {
  return _mm256_insertf128_si256(_mm256_castsi128_si256(halves.low), halves.high, 1);
}

__m128i exponent_of(__m128i bits) {
  return _mm_srai_epi32(_mm_sub_epi32(bits, _mm_set1_epi32(root_half_bits)), 23);
}

__m128i mantissa_of(__m128i bits, __m128i exponent) {
  return _mm_sub_epi32(bits, _mm_slli_epi32(exponent, 23));
}

struct Eight {
  using Floats = __m256;
  static constexpr std::size_t width = 8;

  static Floats all(float value) { return _mm256_set1_ps(value); }
  static Floats load(const float* values) { return _mm256_loadu_ps(values); }
  static void store(float* values, Floats floats) { _mm256_storeu_ps(values, floats); }
  static Floats minimum(Floats a, Floats b) { return _mm256_min_ps(a, b); }
  static Floats maximum(Floats a, Floats b) { return _mm256_max_ps(a, b); }
  static Floats one_where_not_above(Floats values, Floats limits) {
    return _mm256_and_ps(_mm256_cmp_ps(values, limits, _CMP_LE_OQ), all(1.0F));
  }

  struct Complex {
    Floats re;
    Floats im;
  };
  static Complex apart(Floats first, Floats second) {
    // Shuffling stays within the halves: bring the halves that belong together side by side first.
    const Floats lower = _mm256_permute2f128_ps(first, second, 0x20);
    const Floats upper = _mm256_permute2f128_ps(first, second, 0x31);
    return {_mm256_shuffle_ps(lower, upper, _MM_SHUFFLE(2, 0, 2, 0)),
            _mm256_shuffle_ps(lower, upper, _MM_SHUFFLE(3, 1, 3, 1))};
  }

  struct Normalised {
    Floats exponent;
    Floats m;
  };
  static Normalised normalised(Floats x) {
    const Halves bits = halves_of(_mm256_castps_si256(x));
    const Halves exponent{exponent_of(bits.low), exponent_of(bits.high)};
    const Halves m{mantissa_of(bits.low, exponent.low), mantissa_of(bits.high, exponent.high)};
    return {_mm256_cvtepi32_ps(joined(exponent)), _mm256_castsi256_ps(joined(m))};
  }
};

struct Line {
  static void store(float* destination, const float* source) {
    for (std::size_t i = 0; i < line_floats; i += Eight::width)
      _mm256_stream_ps(destination + i, _mm256_loadu_ps(source + i));
  }
  static void finish() { _mm_sfence(); }
};

void copy_avx(float* destination, const float* source, std::size_t count) {
  copy_block<Line>(destination, source, count, count * sizeof(float) >= streamed_bytes);
}

void crop_copy_avx(float* destination, const float* source, std::size_t a_scans, std::size_t source_samples,
                   std::size_t kept_samples, std::size_t whole) {
  copy_cropped<Line>(destination, source, a_scans, source_samples, kept_samples,
                     whole * sizeof(float) >= streamed_bytes);
}

void to_uint16_avx(std::uint16_t* destination, const float* values, std::size_t count, float factor,
                   float offset) {
  const __m256 factors = _mm256_set1_ps(factor);
  const __m256 offsets = _mm256_set1_ps(offset + 0.5F);
  const auto kernel = [&](std::uint16_t* to, const float* from) {
    const __m256 value = _mm256_add_ps(_mm256_mul_ps(_mm256_loadu_ps(from), factors), offsets);
    // Packing cuts what is below 0, and so NaN, which the minimum lets pass as its second operand.
    const __m256i integers = _mm256_cvttps_epi32(_mm256_min_ps(_mm256_set1_ps(largest_uint16), value));
    const Halves whole = halves_of(integers);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_packus_epi32(whole.low, whole.high));
  };
  for_all(destination, values, count, Eight::width, kernel);
}

}  // namespace

void set_avx(Routines& routines) {
  routines.copy = copy_avx;
  routines.crop_copy = crop_copy_avx;
  routines.extremes = extremes_wide<Eight>;
  routines.raise = raise_wide<Eight>;
  routines.count_not_above = count_not_above_wide<Eight>;
  routines.powers = powers_wide<Eight>;
  routines.decibels = decibels_wide<Eight>;
  routines.to_uint16 = to_uint16_avx;
}

}  // namespace oct::vec
