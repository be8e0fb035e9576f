// Four signals side by side.
#pragma once

#include <complex>
#include <cstddef>
#include <vector>

#include <xmmintrin.h>

namespace oct::simulator {

// A sample of each of four signals that all take the same way: a number for templates that are written for
// one signal. Every 64-bit processor has the instructions.
class Lanes {
 public:
  static constexpr int count = 4;

  Lanes() : values_(_mm_setzero_ps()) {}
  Lanes(float value) : values_(_mm_set1_ps(value)) {}
  explicit Lanes(double value) : Lanes(static_cast<float>(value)) {}
  explicit Lanes(int value) : Lanes(static_cast<float>(value)) {}
  explicit Lanes(__m128 values) : values_(values) {}

  __m128 values() const { return values_; }

  Lanes& operator+=(Lanes other) { return *this = *this + other; }
  Lanes& operator-=(Lanes other) { return *this = *this - other; }
  Lanes& operator*=(Lanes other) { return *this = *this * other; }

  friend Lanes operator+(Lanes a, Lanes b) { return Lanes(_mm_add_ps(a.values_, b.values_)); }
  friend Lanes operator-(Lanes a, Lanes b) { return Lanes(_mm_sub_ps(a.values_, b.values_)); }
  friend Lanes operator*(Lanes a, Lanes b) { return Lanes(_mm_mul_ps(a.values_, b.values_)); }
  friend Lanes larger(Lanes a, Lanes b) { return Lanes(_mm_max_ps(a.values_, b.values_)); }
  friend Lanes operator-(Lanes a) { return Lanes(_mm_xor_ps(a.values_, _mm_set1_ps(-0.0F))); }

 private:
  __m128 values_;
};

// Four signals as one of four lanes.
// signals: one after the other, each of size samples, even
inline void join_lanes(const float* signals, int size, Lanes* lanes) {
  const float* const row[Lanes::count] = {signals, signals + size, signals + 2 * size, signals + 3 * size};
  int i = 0;
  for (; i + Lanes::count <= size; i += Lanes::count) {
    __m128 a = _mm_loadu_ps(row[0] + i);
    __m128 b = _mm_loadu_ps(row[1] + i);
    __m128 c = _mm_loadu_ps(row[2] + i);
    __m128 d = _mm_loadu_ps(row[3] + i);
    _MM_TRANSPOSE4_PS(a, b, c, d);
    lanes[i] = Lanes(a);
    lanes[i + 1] = Lanes(b);
    lanes[i + 2] = Lanes(c);
    lanes[i + 3] = Lanes(d);
  }
  for (; i < size; ++i) lanes[i] = Lanes(_mm_setr_ps(row[0][i], row[1][i], row[2][i], row[3][i]));
}

// Access to the samples of one of the signals.
class ComplexLane {
 public:
  ComplexLane(std::vector<std::complex<Lanes>>& lanes, int lane)
      : first_(reinterpret_cast<float*>(lanes.data()) + lane) {}

  std::complex<float> get(std::size_t i) const {
    const float* const part = first_ + step * i;
    return {part[0], part[Lanes::count]};
  }
  void set(std::size_t i, std::complex<float> value) const {
    float* const part = first_ + step * i;
    part[0] = value.real();
    part[Lanes::count] = value.imag();
  }

 private:
  static constexpr std::size_t step = 2 * Lanes::count;
  float* first_;
};

// One of the signals.
inline void take_lane(const Lanes* lanes, int lane, std::size_t size, float* signal) {
  const auto* const floats = reinterpret_cast<const float*>(lanes) + lane;
  for (std::size_t i = 0; i < size; ++i) signal[i] = floats[Lanes::count * i];
}
inline void take_lane(const std::complex<Lanes>* lanes, int lane, int size, std::complex<float>* signal) {
  const auto* const floats = reinterpret_cast<const float*>(lanes) + lane;
  for (int i = 0; i < size; ++i)
    signal[i] = {floats[2 * Lanes::count * i], floats[2 * Lanes::count * i + Lanes::count]};
}

}  // namespace oct::simulator
