// Floats of 16 bits; everything else stays with AVX, which all processors have that have these.
#include <immintrin.h>

#include "vec/routines.h"
#include "vec/wide.h"

namespace oct::vec {
namespace {

void to_half_f16c(std::uint16_t* destination, const float* values, std::size_t count) {
  const auto kernel = [](std::uint16_t* to, const float* from) {
    _mm_storeu_si128(reinterpret_cast<__m128i*>(to),
                     _mm256_cvtps_ph(_mm256_loadu_ps(from), _MM_FROUND_TO_NEAREST_INT));
  };
  for_all(destination, values, count, 8, kernel);
}

}  // namespace

void set_f16c(Routines& routines) {
  routines.to_half = to_half_f16c;
}

}  // namespace oct::vec
