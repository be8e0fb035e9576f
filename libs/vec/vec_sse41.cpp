// What came with the instructions that widen and pack unsigned integers.
#include <smmintrin.h>

#include "vec/constants.h"
#include "vec/four.h"
#include "vec/routines.h"
#include "vec/wide.h"

namespace oct::vec {
namespace {

void to_uint16_sse41(std::uint16_t* destination, const float* values, std::size_t count, float factor,
                     float offset) {
  const __m128 factors = _mm_set1_ps(factor);
  const __m128 offsets = _mm_set1_ps(offset + 0.5F);
  const auto whole = [&](const float* from) {
    const __m128 value = _mm_add_ps(_mm_mul_ps(_mm_loadu_ps(from), factors), offsets);
    // Packing cuts what is below 0, and so NaN, which the minimum lets pass as its second operand.
    return _mm_cvttps_epi32(_mm_min_ps(_mm_set1_ps(largest_uint16), value));
  };
  const auto kernel = [&](std::uint16_t* to, const float* from) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                     _mm_packus_epi32(whole(from), whole(from + Four::width)));
  };
  for_all(destination, values, count, 2 * Four::width, kernel);
}

}  // namespace

void set_sse41(Routines& routines) {
  routines.to_uint16 = to_uint16_sse41;
}

}  // namespace oct::vec
