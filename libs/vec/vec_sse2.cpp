// Four floats at a time, and integers as wide.
#include <emmintrin.h>

#include "vec/constants.h"
#include "vec/four.h"
#include "vec/routines.h"
#include "vec/wide.h"

namespace oct::vec {
namespace {

struct FourWithBits : Four {
  struct Normalised {
    Floats exponent;
    Floats m;
  };
  static Normalised normalised(Floats x) {
    const __m128i bits = _mm_castps_si128(x);
    const __m128i exponent = _mm_srai_epi32(_mm_sub_epi32(bits, _mm_set1_epi32(root_half_bits)), 23);
    const __m128i m = _mm_sub_epi32(bits, _mm_slli_epi32(exponent, 23));
    return {_mm_cvtepi32_ps(exponent), _mm_castsi128_ps(m)};
  }
};

void subtract_sse2(float* destination, const std::uint16_t* counts, const float* background,
                   std::size_t count) {
  const __m128i zero = _mm_setzero_si128();
  std::size_t i = 0;
  for (; i + 2 * Four::width <= count; i += 2 * Four::width) {
    const __m128i eight = _mm_loadu_si128(reinterpret_cast<const __m128i*>(counts + i));
    const __m128 first = _mm_cvtepi32_ps(_mm_unpacklo_epi16(eight, zero));
    const __m128 second = _mm_cvtepi32_ps(_mm_unpackhi_epi16(eight, zero));
    _mm_storeu_ps(destination + i, _mm_sub_ps(first, _mm_loadu_ps(background + i)));
    _mm_storeu_ps(destination + i + Four::width,
                  _mm_sub_ps(second, _mm_loadu_ps(background + i + Four::width)));
  }
  for (; i < count; ++i) destination[i] = static_cast<float>(counts[i]) - background[i];
}

void to_uint16_sse2(std::uint16_t* destination, const float* values, std::size_t count, float factor,
                    float offset) {
  const __m128 factors = _mm_set1_ps(factor);
  const __m128 offsets = _mm_set1_ps(offset + 0.5F);
  const auto whole = [&](const float* from) {
    __m128 value = _mm_add_ps(_mm_mul_ps(_mm_loadu_ps(from), factors), offsets);
    value = _mm_min_ps(_mm_max_ps(value, _mm_setzero_ps()), _mm_set1_ps(largest_uint16));
    // The instruction that packs is for signed numbers.
    return _mm_sub_epi32(_mm_cvttps_epi32(value), _mm_set1_epi32(32768));
  };
  const auto kernel = [&](std::uint16_t* to, const float* from) {
    const __m128i packed = _mm_packs_epi32(whole(from), whole(from + Four::width));
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to), _mm_xor_si128(packed, _mm_set1_epi16(-32768)));
  };
  for_all(destination, values, count, 2 * Four::width, kernel);
}

}  // namespace

void set_sse2(Routines& routines) {
  routines.subtract = subtract_sse2;
  routines.decibels = decibels_wide<FourWithBits>;
  routines.to_uint16 = to_uint16_sse2;
}

}  // namespace oct::vec
