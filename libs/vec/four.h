// The register of the SSE family, for wide.h. For inclusion by the files of single instruction sets, local to
// each like line_stream.h.
#pragma once

#include <cstddef>

#include <xmmintrin.h>

namespace oct::vec {
namespace {

struct Four {
  using Floats = __m128;
  static constexpr std::size_t width = 4;

  static Floats all(float value) { return _mm_set1_ps(value); }
  static Floats load(const float* values) { return _mm_loadu_ps(values); }
  static void store(float* values, Floats floats) { _mm_storeu_ps(values, floats); }
  static Floats minimum(Floats a, Floats b) { return _mm_min_ps(a, b); }
  static Floats maximum(Floats a, Floats b) { return _mm_max_ps(a, b); }
  static Floats one_where_not_above(Floats values, Floats limits) {
    return _mm_and_ps(_mm_cmple_ps(values, limits), all(1.0F));
  }

  struct Complex {
    Floats re;
    Floats im;
  };
  static Complex apart(Floats first, Floats second) {
    return {_mm_shuffle_ps(first, second, _MM_SHUFFLE(2, 0, 2, 0)),
            _mm_shuffle_ps(first, second, _MM_SHUFFLE(3, 1, 3, 1))};
  }
};

}  // namespace
}  // namespace oct::vec
