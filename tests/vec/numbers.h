// Numbers for tests: ordinary ones of all sizes, and in between the awkward ones.
#pragma once

#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>

#include "vec/routines.h"

namespace oct::vec::test {

inline constexpr std::array<InstructionSet, 4> vector_sets{InstructionSet::sse, InstructionSet::sse2,
                                                           InstructionSet::sse41, InstructionSet::avx};

inline const char* name_of(InstructionSet set) {
  constexpr std::array<const char*, 5> names{"scalar", "sse", "sse2", "sse41", "avx"};
  return names[static_cast<std::size_t>(set)];
}

class Numbers {
 public:
  explicit Numbers(unsigned seed) : random_(seed) {}

  // Any bits but those of a signalling NaN; an eighth are special values.
  float any() {
    using Limits = std::numeric_limits<float>;
    constexpr std::array special{Limits::quiet_NaN(),
                                 Limits::infinity(),
                                 -Limits::infinity(),
                                 Limits::max(),
                                 Limits::lowest(),
                                 Limits::min(),
                                 Limits::denorm_min(),
                                 -Limits::denorm_min(),
                                 0.0F,
                                 -0.0F,
                                 1.0F,
                                 0.5F,
                                 65535.0F,
                                 65535.5F};
    if (random_() % 8 == 0) return special[random_() % special.size()];
    const auto number = std::bit_cast<float>(static_cast<std::uint32_t>(random_()));
    return std::isnan(number) ? 0.25F : number;
  }

  float between(float low, float high) { return std::uniform_real_distribution<float>(low, high)(random_); }

  std::uint16_t count() { return static_cast<std::uint16_t>(random_()); }

 private:
  std::mt19937 random_;
};

}  // namespace oct::vec::test
