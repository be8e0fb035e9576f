/// @file
/// Fourier transforms of complex signals.
#pragma once

#include <unsupported/Eigen/FFT>

#include <complex>
#include <vector>

namespace oct::simulator {

/// Transforms of one length. Keeps tables and must not be shared between threads.
class Fourier {
public:
  explicit Fourier(int length) : length_(length), transform_({}, Transform::Unscaled) {}

  /// sum over n of input[n] exp(-2 pi i n m / length), for every m
  void forward(const std::complex<float>* input, std::complex<float>* output) {
    transform_.fwd(output, input, length_);
  }

  /// sum over n of input[n] exp(+2 pi i n m / length), for every m
  void backward(const std::complex<float>* input, std::complex<float>* output) {
    transform_.inv(output, input, length_);
  }

private:
  using Transform = Eigen::FFT<float>;

  int length_;
  Transform transform_;
};

}  // namespace oct::simulator
