// The variants behind vec.h, one table per instruction set.
#pragma once

#include "vec/vec.h"

namespace oct::vec {

// In the order in which processors got them: each has all before it.
enum class InstructionSet { scalar, sse, sse2, sse41, avx, f16c };

struct Routines {
  void (*copy)(float*, const float*, std::size_t);
  void (*crop_copy)(float*, const float*, std::size_t, std::size_t, std::size_t, std::size_t);
  Extremes (*extremes)(const float*, std::size_t);
  void (*raise)(float*, const float*, std::size_t);
  std::size_t (*count_not_above)(const float*, std::size_t, float);
  void (*subtract)(float*, const std::uint16_t*, const float*, std::size_t);
  void (*powers)(float*, const float*, std::size_t);
  void (*decibels)(float*, const float*, std::size_t, float);
  void (*to_uint16)(std::uint16_t*, const float*, std::size_t, float, float);
  void (*to_half)(std::uint16_t*, const float*, std::size_t);
};

bool is_supported(InstructionSet set);

// For every routine the variant of the set, or of the nearest set before it that has one.
Routines routines_of(InstructionSet set);

// Put a set's own variants into a table. A set has one only where it is faster than the sets before it.
void set_scalar(Routines& routines);
void set_sse(Routines& routines);
void set_sse2(Routines& routines);
void set_sse41(Routines& routines);
void set_avx(Routines& routines);
void set_f16c(Routines& routines);

// Smaller copies stay in the caches, where whoever reads them next finds them.
inline constexpr std::size_t streamed_bytes = std::size_t{16} << 20U;

}  // namespace oct::vec
