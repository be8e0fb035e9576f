/// @file
/// Fourier transforms of complex signals.
#pragma once

#include "lanes.h"

#include <unsupported/Eigen/FFT>

#include <complex>
#include <vector>

namespace oct::simulator {

/// Transforms of one length. Keeps tables and must not be shared between threads.
/// @tparam Value float, or Lanes for four signals at once
template <typename Value>
class FourierOf {
 public:
  explicit FourierOf(int length) : length_(length), transform_({}, Transform::Unscaled) {}

  /// sum over n of input[n] exp(-2 pi i n m / length), for every m
  void forward(const std::complex<Value>* input, std::complex<Value>* output) {
    transform_.fwd(output, input, length_);
  }

  /// sum over n of input[n] exp(+2 pi i n m / length), for every m
  void backward(const std::complex<Value>* input, std::complex<Value>* output) {
    transform_.inv(output, input, length_);
  }

 private:
  using Transform = Eigen::FFT<Value>;

  int length_;
  Transform transform_;
};

using Fourier = FourierOf<float>;
using LaneFourier = FourierOf<Lanes>;

}  // namespace oct::simulator
