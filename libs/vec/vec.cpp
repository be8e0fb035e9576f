#include "vec/vec.h"

#include <cpuid.h>

#include "vec/routines.h"

namespace oct::vec {
namespace {

constexpr InstructionSet all_sets[] = {InstructionSet::scalar, InstructionSet::sse, InstructionSet::sse2,
                                       InstructionSet::sse41,  InstructionSet::avx, InstructionSet::f16c};

constexpr void (*setters[])(Routines&) = {set_scalar, set_sse, set_sse2, set_sse41, set_avx, set_f16c};

// Compilers know no name for it.
bool has_half_floats() {
  unsigned int eax = 0;
  unsigned int ebx = 0;
  unsigned int ecx = 0;
  unsigned int edx = 0;
  return __get_cpuid(1, &eax, &ebx, &ecx, &edx) != 0 && (ecx & bit_F16C) != 0;
}

// What the processor can do is asked once.
const Routines& best() {
  static const Routines routines = [] {
    InstructionSet widest = InstructionSet::scalar;
    for (const InstructionSet set : all_sets) {
      if (is_supported(set)) widest = set;
    }
    return routines_of(widest);
  }();
  return routines;
}

}  // namespace

bool is_supported(InstructionSet set) {
  __builtin_cpu_init();
  switch (set) {
    case InstructionSet::sse:
      return __builtin_cpu_supports("sse") != 0;
    case InstructionSet::sse2:
      return __builtin_cpu_supports("sse2") != 0;
    case InstructionSet::sse41:
      return __builtin_cpu_supports("sse4.1") != 0;
    case InstructionSet::avx:
      return __builtin_cpu_supports("avx") != 0;
    case InstructionSet::f16c:
      return __builtin_cpu_supports("avx") != 0 && has_half_floats();
    default:
      return true;
  }
}

Routines routines_of(InstructionSet set) {
  Routines routines{};
  for (const InstructionSet each : all_sets) {
    if (each <= set) setters[static_cast<int>(each)](routines);
  }
  return routines;
}

void copy(float* destination, const float* source, std::size_t count) {
  best().copy(destination, source, count);
}

void crop_copy(float* destination, const float* source, std::size_t a_scans, std::size_t source_samples,
               std::size_t kept_samples, std::size_t whole) {
  const std::size_t count = a_scans * kept_samples;
  best().crop_copy(destination, source, a_scans, source_samples, kept_samples, whole > count ? whole : count);
}

Extremes extremes(const float* values, std::size_t count) {
  return best().extremes(values, count);
}

void raise(float* maxima, const float* values, std::size_t count) {
  best().raise(maxima, values, count);
}

std::size_t count_not_above(const float* values, std::size_t count, float limit) {
  return best().count_not_above(values, count, limit);
}

void subtract(float* destination, const std::uint16_t* counts, const float* background, std::size_t count) {
  best().subtract(destination, counts, background, count);
}

void powers(float* destination, const float* complex_numbers, std::size_t count) {
  best().powers(destination, complex_numbers, count);
}

void decibels(float* destination, const float* powers, std::size_t count, float least) {
  best().decibels(destination, powers, count, least);
}

void to_uint16(std::uint16_t* destination, const float* values, std::size_t count, float factor,
               float offset) {
  best().to_uint16(destination, values, count, factor, offset);
}

void to_half(std::uint16_t* destination, const float* values, std::size_t count) {
  best().to_half(destination, values, count);
}

}  // namespace oct::vec
