// Loops over registers of any width. For inclusion by the files of single instruction sets, local to each
// like line_stream.h.
//
// Register names its floats and how many it holds; the arithmetic of the floats themselves is the compiler's.
// Its minimum and maximum give their second operand where one of the two is NaN.
#pragma once

#include "vec/constants.h"
#include "vec/vec.h"

namespace oct::vec {
namespace {

template <class Register>
Extremes extremes_wide(const float* values, std::size_t count) {
  using Floats = typename Register::Floats;
  constexpr std::size_t width = Register::width;
  constexpr float infinity = __builtin_inff();
  Floats low = Register::all(infinity);
  Floats high = Register::all(-infinity);
  // Twice as many as one chain of minima could keep busy.
  Floats low2 = low;
  Floats high2 = high;
  std::size_t i = 0;
  for (; i + 2 * width <= count; i += 2 * width) {
    const Floats first = Register::load(values + i);
    const Floats second = Register::load(values + i + width);
    low = Register::minimum(first, low);
    high = Register::maximum(first, high);
    low2 = Register::minimum(second, low2);
    high2 = Register::maximum(second, high2);
  }
  float lows[width];
  float highs[width];
  Register::store(lows, Register::minimum(low, low2));
  Register::store(highs, Register::maximum(high, high2));
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

template <class Register>
void raise_wide(float* maxima, const float* values, std::size_t count) {
  constexpr std::size_t width = Register::width;
  std::size_t i = 0;
  for (; i + 2 * width <= count; i += 2 * width) {
    const auto first = Register::maximum(Register::load(values + i), Register::load(maxima + i));
    const auto second =
        Register::maximum(Register::load(values + i + width), Register::load(maxima + i + width));
    Register::store(maxima + i, first);
    Register::store(maxima + i + width, second);
  }
  for (; i < count; ++i) maxima[i] = values[i] > maxima[i] ? values[i] : maxima[i];
}

// Counts as floats, which are exact up to 2^24 in every lane; so many rounds stay far below.
constexpr std::size_t countable = std::size_t{1} << 16U;

template <class Register>
std::size_t count_not_above_wide(const float* values, std::size_t count, float limit) {
  using Floats = typename Register::Floats;
  constexpr std::size_t width = Register::width;
  const Floats limits = Register::all(limit);
  std::size_t result = 0;
  std::size_t i = 0;
  while (i + 2 * width <= count) {
    const std::size_t left = (count - i) / (2 * width);
    const std::size_t end = i + 2 * width * (left < countable ? left : countable);
    Floats first = Register::all(0.0F);
    Floats second = first;
    for (; i < end; i += 2 * width) {
      first += Register::one_where_not_above(Register::load(values + i), limits);
      second += Register::one_where_not_above(Register::load(values + i + width), limits);
    }
    float counts[2 * width];
    Register::store(counts, first);
    Register::store(counts + width, second);
    for (const float each : counts) result += static_cast<std::size_t>(each);
  }
  for (; i < count; ++i) result += values[i] <= limit ? 1 : 0;
  return result;
}

template <class Register>
void powers_wide(float* destination, const float* complex_numbers, std::size_t count) {
  constexpr std::size_t width = Register::width;
  std::size_t i = 0;
  for (; i + width <= count; i += width) {
    const auto [re, im] = Register::apart(Register::load(complex_numbers + 2 * i),
                                          Register::load(complex_numbers + 2 * i + width));
    Register::store(destination + i, re * re + im * im);
  }
  for (; i < count; ++i) {
    const float re = complex_numbers[2 * i];
    const float im = complex_numbers[2 * i + 1];
    destination[i] = re * re + im * im;
  }
}

// The last few values go through a buffer of full width, so that they take the same way as the others.
template <class From, class To, class Kernel>
void for_tail(To* destination, const From* source, std::size_t count, std::size_t full_width, Kernel kernel) {
  From values[16] = {};
  To results[16];
  for (std::size_t i = 0; i < count; ++i) values[i] = source[i];
  for (std::size_t i = 0; i < count; i += full_width) kernel(results + i, values + i);
  for (std::size_t i = 0; i < count; ++i) destination[i] = results[i];
}

// kernel(to, from) turns full_width values.
template <class From, class To, class Kernel>
void for_all(To* destination, const From* source, std::size_t count, std::size_t full_width, Kernel kernel) {
  std::size_t i = 0;
  for (; i + full_width <= count; i += full_width) kernel(destination + i, source + i);
  for_tail(destination + i, source + i, count - i, full_width, kernel);
}

// Register::normalised(x) gives the exponent of every x as a float and its m of constants.h.
template <class Register>
void decibels_wide(float* destination, const float* powers, std::size_t count, float least) {
  using Floats = typename Register::Floats;
  const Floats floor = Register::all(least);
  const Floats ceiling = Register::all(largest_float);
  for_all(destination, powers, count, Register::width, [&](float* to, const float* from) {
    // The maximum's second operand stands in for NaN.
    const Floats x = Register::minimum(Register::maximum(Register::load(from), floor), ceiling);
    const auto [exponent, m] = Register::normalised(x);
    const Floats s = (m - 1.0F) / (m + 1.0F);
    const Floats q = s * s;
    const Floats series = series1 + q * (series3 + q * (series5 + q * (series7 + q * series9)));
    Register::store(to, exponent * per_octave + s * series);
  });
}

}  // namespace
}  // namespace oct::vec
