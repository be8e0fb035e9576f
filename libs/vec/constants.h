// Numbers that all variants share. 10 log10 x = per_octave * exponent + 10 / ln 10 * ln m,
// where x = m * 2^exponent and m lies within sqrt(1/2) .. sqrt(2); ln m = 2 artanh s with s =
// (m - 1) / (m + 1), a series in s * s.
#pragma once

#include <cstdint>

namespace oct::vec {

inline constexpr std::int32_t root_half_bits = 0x3F3504F3;  // sqrt(1/2) as a float
inline constexpr float largest_float = 3.40282347e38F;
inline constexpr float per_octave = 3.01029995663981195F;
inline constexpr float series1 = 8.68588963806503655F;  // 20 / ln 10
inline constexpr float series3 = series1 / 3.0F;
inline constexpr float series5 = series1 / 5.0F;
inline constexpr float series7 = series1 / 7.0F;
inline constexpr float series9 = series1 / 9.0F;

inline constexpr float largest_uint16 = 65535.0F;

}  // namespace oct::vec
