// Arithmetic on arrays, in the widest instructions that the processor has. Depends on nothing; the library
// and the simulated device link it.
//
// Every variant gives the same bits as the plain loop, so that no result depends on the processor.
#pragma once

#include <cstddef>
#include <cstdint>

namespace oct::vec {

// Copies count floats. Large blocks go past the caches, whose content they would displace: right for buffers
// of the graphics driver, which may be write-combined, and for whatever is not read again at once.
void copy(float* destination, const float* source, std::size_t count);

// Of each of a_scans rows of source_samples floats, copies the first kept_samples; the destination is packed.
// Stores as copy() does; a part of a larger block says how many floats of it are copied altogether.
void crop_copy(float* destination, const float* source, std::size_t a_scans, std::size_t source_samples,
               std::size_t kept_samples, std::size_t whole = 0);

struct Extremes {
  float lowest;   // infinity where there is no number
  float highest;  // minus infinity where there is no number
};

// The lowest and the highest value; NaN is ignored. Which zero stands for a zero of either sign is open.
Extremes extremes(const float* values, std::size_t count);

// maxima[i] = the greater of maxima[i] and values[i]; NaN is ignored.
void raise(float* maxima, const float* values, std::size_t count);

// How many values are at most limit; NaN is not.
std::size_t count_not_above(const float* values, std::size_t count, float limit);

// The value below which this share (0 to 1) of the values lies: the one at rank share * (numbers - 1) in
// rising order, rounded down. Exact, by at most 32 counts of the array, which is left as it is. NaN is
// ignored; NaN where there is no number. Which zero stands for a zero of either sign is open.
float quantile(const float* values, std::size_t count, double share);

// destination[i] = counts[i] - background[i]
void subtract(float* destination, const std::uint16_t* counts, const float* background, std::size_t count);

// destination[i] = re * re + im * im of count complex numbers, which lie as pairs.
void powers(float* destination, const float* complex_numbers, std::size_t count);

// destination[i] = 10 log10 of a power, within 5e-5 dB. What is below least, or NaN, counts as least, which
// must be a normal number above zero; infinity counts as the largest float (385.3 dB). In place or apart.
void decibels(float* destination, const float* powers, std::size_t count, float least);

// destination[i] = factor * values[i] + offset, halves rounded up and clamped to
// what 16 bits hold; NaN becomes 0.
void to_uint16(std::uint16_t* destination, const float* values, std::size_t count, float factor,
               float offset);

// destination[i] = values[i] as a float of 16 bits, the nearest one, of two the even one; infinity from 65520 on.
void to_half(std::uint16_t* destination, const float* values, std::size_t count);

}  // namespace oct::vec
